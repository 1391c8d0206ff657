#pragma once

#include <InkoraKit/JSON.h>

#include <cstddef>
#include <iterator>
#include <span>
#include <string_view>

namespace InkoraKit {

/// The elements of an array where they are: `for (const JSON& element : json.elements())`.
/// It owns nothing, and neither do its iterators: all of them live as long as the `JSON` that they
/// are of, and until that changes.
class JSONElements {
public:
    /// Goes through the elements, in both directions and in leaps.
    class iterator {
    public:
        /// What the standard library asks of an iterator.
        using iterator_category = std::random_access_iterator_tag;
        using value_type = JSON;
        using difference_type = std::ptrdiff_t;
        using pointer = const JSON*;
        using reference = const JSON&;

        /// Of no array, to be assigned to.
        iterator() = default;

        /// The element, where it is; or the one so many further.
        const JSON& operator*() const noexcept { return JSON::shown(*element_); }
        const JSON* operator->() const noexcept { return &**this; }
        const JSON& operator[](std::ptrdiff_t n) const noexcept { return *(*this + n); }

        /// As of a pointer into an array.
        iterator& operator+=(std::ptrdiff_t n) noexcept {
            element_ += n;
            return *this;
        }
        iterator& operator-=(std::ptrdiff_t n) noexcept { return *this += -n; }
        iterator& operator++() noexcept { return *this += 1; }
        iterator& operator--() noexcept { return *this -= 1; }
        iterator operator++(int) noexcept { return iterator((*this += 1).element_ - 1); }
        iterator operator--(int) noexcept { return iterator((*this -= 1).element_ + 1); }
        friend iterator operator+(iterator i, std::ptrdiff_t n) noexcept { return i += n; }
        friend iterator operator+(std::ptrdiff_t n, iterator i) noexcept { return i += n; }
        friend iterator operator-(iterator i, std::ptrdiff_t n) noexcept { return i -= n; }
        friend std::ptrdiff_t operator-(iterator left, iterator right) noexcept {
            return left.element_ - right.element_;
        }
        friend auto operator<=>(const iterator&, const iterator&) = default;

    private:
        friend class JSONElements;
        explicit iterator(const AnySlot* element) noexcept : element_(element) {}

        const AnySlot* element_ = nullptr;
    };
    /// The elements cannot be changed through a view.
    using const_iterator = iterator;

    /// None.
    JSONElements() = default;

    /// The first element.
    iterator begin() const noexcept { return iterator(first_); }
    /// After the last element.
    iterator end() const noexcept { return iterator(first_ + count_); }
    /// How many there are.
    std::size_t size() const noexcept { return count_; }
    /// Whether there are none.
    bool empty() const noexcept { return count_ == 0; }
    /// The element at a position below `size()`.
    const JSON& operator[](std::size_t position) const noexcept {
        return JSON::shown(first_[position]);
    }
    /// The first element, if there is one.
    const JSON& front() const noexcept { return (*this)[0]; }
    /// The last element, if there is one.
    const JSON& back() const noexcept { return (*this)[count_ - 1]; }

private:
    friend class JSON;
    explicit JSONElements(const AnySlot& array) noexcept
        : first_(array.parts()), count_(array.header().count) {}

    const AnySlot* first_ = nullptr;
    std::size_t count_ = 0;
};

/// The members of a dictionary where they are: `for (auto [key, value] : json.members())`.
/// It owns nothing, and neither do its iterators and what they give: all of them live as long as
/// the `JSON` that they are of, and until that changes.
class JSONMembers {
public:
    /// A member where it is.
    struct Member {
        std::string_view key;  ///< In UTF-8.
        const JSON& value;     ///< What stands under the key.
    };

    /// Goes through the members in their order.
    class iterator {
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

        /// Of no dictionary, to be assigned to.
        iterator() = default;

        /// The member, where it is.
        Member operator*() const noexcept { return {key_->text(), JSON::shown(key_[1])}; }
        pointer operator->() const noexcept { return {**this}; }
        /// Moves on to the next member.
        iterator& operator++() noexcept {
            key_ += 2;
            return *this;
        }
        iterator operator++(int) noexcept {
            const iterator before = *this;
            ++*this;
            return before;
        }
        /// Iterators of one dictionary are equal at the same member.
        friend bool operator==(const iterator&, const iterator&) = default;

    private:
        friend class JSONMembers;
        explicit iterator(const AnySlot* key) noexcept : key_(key) {}

        const AnySlot* key_ = nullptr;  // its value follows
    };
    /// The members cannot be changed through a view.
    using const_iterator = iterator;

    /// None.
    JSONMembers() = default;

    /// The first member.
    iterator begin() const noexcept { return iterator(first_); }
    /// After the last member.
    iterator end() const noexcept { return iterator(first_ + 2 * count_); }
    /// How many there are.
    std::size_t size() const noexcept { return count_; }
    /// Whether there are none.
    bool empty() const noexcept { return count_ == 0; }

private:
    friend class JSON;
    explicit JSONMembers(const AnySlot& dictionary) noexcept
        : first_(dictionary.parts()), count_(dictionary.header().count) {}

    const AnySlot* first_ = nullptr;
    std::size_t count_ = 0;
};

inline JSONElements JSON::elements() const& noexcept {
    const AnySlot& slot = shownContents().slot();
    return slot.tag() == AnySlot::array ? JSONElements(slot) : JSONElements();
}

inline JSONMembers JSON::members() const& noexcept {
    const AnySlot& slot = shownContents().slot();
    return slot.tag() == AnySlot::dictionary ? JSONMembers(slot) : JSONMembers();
}

}  // namespace InkoraKit

template <>
inline constexpr bool std::ranges::enable_view<InkoraKit::JSONElements> = true;
template <>
inline constexpr bool std::ranges::enable_borrowed_range<InkoraKit::JSONElements> = true;
template <>
inline constexpr bool std::ranges::enable_view<InkoraKit::JSONMembers> = true;
template <>
inline constexpr bool std::ranges::enable_borrowed_range<InkoraKit::JSONMembers> = true;
