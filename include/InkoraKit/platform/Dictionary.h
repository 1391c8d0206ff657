#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/Any.h>

#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace InkoraKit {

/// The platform's dictionary: values of any type by text keys, in the order in which the keys were
/// first set. Contents are shared by copies until one of them changes. Finding a key takes constant
/// time.
class INKORA_EXPORT Dictionary {
public:
    /// A member as iteration shows it. Both parts live until the dictionary changes or ends.
    using Member = std::pair<std::string_view, const Any&>;

    /// Goes through the members in their order, until the dictionary changes or ends.
    class const_iterator {
    public:
        /// What the standard library asks of an iterator.
        using iterator_category = std::input_iterator_tag;
        using iterator_concept = std::forward_iterator_tag;
        using value_type = Member;
        using difference_type = std::ptrdiff_t;
        using reference = Member;
        /// What `->` gives.
        struct pointer {
            /// The member, for as long as the expression lasts.
            const Member* operator->() const noexcept { return &member; }
            Member member;
        };

        /// Of no dictionary, to be assigned to; or, for the dictionary itself, at a key, behind
        /// which its value lies.
        const_iterator() = default;
        explicit const_iterator(const Any* keyAndValue) noexcept : keyAndValue_(keyAndValue) {}

        /// The member, where it is.
        Member operator*() const noexcept {
            return {*keyAndValue_->as<std::string_view>(), keyAndValue_[1]};
        }
        pointer operator->() const noexcept { return {**this}; }
        /// Moves on to the next member.
        const_iterator& operator++() noexcept {
            keyAndValue_ += 2;
            return *this;
        }
        const_iterator operator++(int) noexcept {
            const const_iterator before = *this;
            ++*this;
            return before;
        }
        /// By their order in one dictionary.
        friend auto operator<=>(const const_iterator&, const const_iterator&) = default;

    private:
        const Any* keyAndValue_ = nullptr;
    };

    /// These members in their order, or none. Of two with one key the last one counts, where the
    /// first one stood.
    Dictionary();
    Dictionary(std::initializer_list<std::pair<std::string_view, Any>> members);

    /// How many members there are, and whether there are none.
    std::size_t size() const noexcept;
    bool empty() const noexcept { return size() == 0; }

    /// The members in their order.
    const_iterator begin() const noexcept;
    const_iterator end() const noexcept;
    /// The member with that key, else `end()`; and whether there is one.
    const_iterator find(std::string_view key) const noexcept;
    bool contains(std::string_view key) const noexcept { return find(key) != end(); }

    /// Makes room for so many members in all.
    void reserve(std::size_t count);
    /// Adds the member at the end, or replaces its value where it stands.
    void set(std::string_view key, Any value);
    /// @return whether there was such a member.
    bool erase(std::string_view key);

    /// As JSON text, where the values allow it: see `Any::description`.
    std::string description() const { return contents_.description(); }
    /// By the platform's equality, in any order: see `Any`.
    friend bool operator==(const Dictionary&, const Dictionary&) = default;

private:
    friend class Any;
    friend class Storage;
    explicit Dictionary(Any contents) noexcept : contents_(std::move(contents)) {}

    Any contents_;  // always a dictionary
};

template <class Members>
Any Any::dictionaryOf(const Members& members) {
    Dictionary dictionary;
    dictionary.reserve(members.size());
    for (const auto& [key, value] : members) dictionary.set(key, value);
    return dictionary;
}

}  // namespace InkoraKit
