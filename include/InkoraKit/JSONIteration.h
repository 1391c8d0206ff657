#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/JSON.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <iterator>
#include <string>
#include <string_view>

namespace InkoraKit {

/// The key of an element or member that iteration shows: of an array the position in decimal.
/// It is, and what it gives as a `std::string_view`, valid until the iterator moves on; as a
/// `std::string` it is yours.
class INKORA_EXPORT JSONMemberKey {
public:
    /// The text, until the iterator moves on.
    std::string_view view() const noexcept { return text_ ? text_->text() : positionText(); }
    /// The length of the text in bytes.
    std::size_t size() const noexcept { return view().size(); }

    /// The same as `view()`.
    operator std::string_view() const noexcept { return view(); }
    /// A copy of the text.
    operator std::string() const { return std::string(view()); }
    /// Whether the text is that one.
    friend bool operator==(const JSONMemberKey& key, std::string_view text) noexcept {
        return key.view() == text;
    }
    /// Writes the text.
    friend INKORA_EXPORT std::ostream& operator<<(std::ostream& stream, const JSONMemberKey& key);

private:
    friend class JSONMemberIterator;
    JSONMemberKey(const AnySlot* text, std::int64_t position) noexcept
        : text_(text), position_(position) {}
    std::string_view positionText() const noexcept;

    const AnySlot* text_;    // of a member; null for an element
    std::int64_t position_;  // of an element
    mutable std::uint8_t digitCount_ = 0;
    mutable std::array<char, 20> digits_;  // of the position, once somebody asks for them
};

/// An element or member, which it keeps.
struct JSONMember {
    std::string key;  ///< Of an element its position in decimal.
    JSON value;       ///< A copy.
};

/// An element or member as iteration shows it: where it is, until the iterator moves on. Copies of
/// its value live on their own.
struct JSONMemberReference {
    JSONMemberKey key;  ///< Of an element its position in decimal.
    const JSON& value;  ///< Where it is.

    /// A copy.
    operator JSONMember() const { return {key, value}; }
};

/// Goes through the contents that a value has when the iterator is made. An iterator of a value
/// that another iterator shows lives no longer than that one.
class INKORA_EXPORT JSONMemberIterator {
public:
    /// What the standard library asks of an iterator.
    using iterator_category = std::input_iterator_tag;
    using value_type = JSONMember;
    using difference_type = std::ptrdiff_t;
    using reference = JSONMemberReference;
    /// What `->` gives.
    struct pointer {
        /// The element or member, for as long as the expression lasts.
        const JSONMemberReference* operator->() const noexcept { return &member; }
        JSONMemberReference member;
    };

    /// The end.
    JSONMemberIterator() = default;

    /// The element or member, where it is.
    JSONMemberReference operator*() const noexcept {
        return {JSONMemberKey(hasKeys_ ? next_ : nullptr, position_),
                JSON::shown(next_[hasKeys_ ? 1 : 0])};
    }
    /// The same.
    pointer operator->() const noexcept { return {**this}; }
    /// Moves on.
    JSONMemberIterator& operator++() noexcept {
        --remaining_;
        ++position_;
        next_ += hasKeys_ ? 2 : 1;
        return *this;
    }
    /// Moves on, and gives itself as it was.
    JSONMemberIterator operator++(int) {
        JSONMemberIterator before = *this;
        ++*this;
        return before;
    }

    /// Iterators of one value are equal at the same position.
    friend bool operator==(const JSONMemberIterator& left,
                           const JSONMemberIterator& right) noexcept {
        return left.remaining_ == right.remaining_;
    }

private:
    friend class JSON;
    explicit JSONMemberIterator(const Any& container) {
        const AnySlot& slot = container.slot();
        if (!slot.isContainer()) return;
        if (slot.isCounted()) {
            container_ = container;
        } else {
            container_.borrow(container);  // which is shown by another iterator
        }
        next_ = slot.parts();
        remaining_ = slot.header().count;
        hasKeys_ = slot.tag() == AnySlot::dictionary;
    }

    Any container_;
    const AnySlot* next_ = nullptr;
    std::size_t remaining_ = 0;
    std::int64_t position_ = 0;
    bool hasKeys_ = false;
};

inline JSON::const_iterator JSON::begin() const {
    return JSONMemberIterator(shownContents());
}

inline JSON::const_iterator JSON::end() const noexcept {
    return {};
}

}  // namespace InkoraKit
