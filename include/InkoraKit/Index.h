#pragma once

#include <cstdint>
#include <optional>
#include <utility>

namespace InkoraKit {

/// A position of a collection that may be an array, a dictionary or neither, as `JSON` is.
/// `Element` is what the collection is made of.
template <class Element>
class Index {
public:
    /// A position in an array or among the members of a dictionary, counted from 0 and not checked;
    /// or, `null`, the one of what is neither.
    static constexpr Index array(std::int64_t position) noexcept { return {Case::array, position}; }
    static constexpr Index dictionary(std::int64_t position) noexcept {
        return {Case::dictionary, position};
    }
    static constexpr Index null() noexcept { return {Case::null, 0}; }

    /// The position in the array, or among the dictionary's members in their order, if it is one.
    constexpr std::optional<std::int64_t> arrayPosition() const noexcept {
        return kind_ == Case::array ? std::optional(position_) : std::nullopt;
    }
    constexpr std::optional<std::int64_t> dictionaryPosition() const noexcept {
        return kind_ == Case::dictionary ? std::optional(position_) : std::nullopt;
    }

    /// Positions of one kind and number are equal, and so is null to null.
    friend constexpr bool operator==(const Index&, const Index&) = default;
    /// Positions of one kind compare; all others, and null with null, are never less.
    friend constexpr bool operator<(const Index& left, const Index& right) noexcept {
        return left.kind_ == right.kind_ && left.kind_ != Case::null &&
               left.position_ < right.position_;
    }
    friend constexpr bool operator>(const Index& left, const Index& right) noexcept {
        return right < left;
    }
    friend constexpr bool operator<=(const Index& left, const Index& right) noexcept {
        return !(right < left);
    }
    friend constexpr bool operator>=(const Index& left, const Index& right) noexcept {
        return !(left < right);
    }

private:
    enum class Case { array, dictionary, null };
    constexpr Index(Case kind, std::int64_t position) noexcept : kind_(kind), position_(position) {}

    Case kind_;
    std::int64_t position_;
};

}  // namespace InkoraKit
