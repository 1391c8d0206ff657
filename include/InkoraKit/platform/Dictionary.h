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

    class const_iterator {
    public:
        using iterator_category = std::input_iterator_tag;
        using iterator_concept = std::forward_iterator_tag;
        using value_type = Member;
        using difference_type = std::ptrdiff_t;
        using reference = Member;
        struct pointer {
            const Member* operator->() const noexcept { return &member; }
            Member member;
        };

        const_iterator() = default;
        explicit const_iterator(const Any* keyAndValue) noexcept : keyAndValue_(keyAndValue) {}

        Member operator*() const noexcept {
            return {*keyAndValue_->as<std::string_view>(), keyAndValue_[1]};
        }
        pointer operator->() const noexcept { return {**this}; }
        const_iterator& operator++() noexcept {
            keyAndValue_ += 2;
            return *this;
        }
        const_iterator operator++(int) noexcept {
            const const_iterator before = *this;
            ++*this;
            return before;
        }
        friend auto operator<=>(const const_iterator&, const const_iterator&) = default;

    private:
        const Any* keyAndValue_ = nullptr;
    };

    Dictionary();
    Dictionary(std::initializer_list<std::pair<std::string_view, Any>> members);

    std::size_t size() const noexcept;
    bool empty() const noexcept { return size() == 0; }

    const_iterator begin() const noexcept;
    const_iterator end() const noexcept;
    const_iterator find(std::string_view key) const noexcept;
    bool contains(std::string_view key) const noexcept { return find(key) != end(); }

    void reserve(std::size_t count);
    /// Adds the member at the end, or replaces its value where it stands.
    void set(std::string_view key, Any value);
    /// @return whether there was such a member.
    bool erase(std::string_view key);

    std::string description() const { return contents_.description(); }
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
