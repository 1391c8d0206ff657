#pragma once

#include <InkoraKit/platform/Any.h>
#include <InkoraKit/platform/Data.h>
#include <InkoraKit/platform/Integer.h>

#include <concepts>
#include <iterator>
#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <variant>

namespace InkoraKit {

class JSON;

/// Whether a type is one of the others.
template <class T, class... Others>
inline constexpr bool isOneOf = (std::same_as<T, Others> || ...);

/// What a `JSON` is made of that is not made of other values: truth values, numbers and texts, null
/// (`nullptr`, `std::nullopt`), the platform's values, other `JSON`, and `Data`, which is read as
/// JSON text.
template <class T>
inline constexpr bool isJSONLeaf =
    isOneOf<T, bool, float, double, std::nullptr_t, std::nullopt_t, NSNull, NSNumber,
            NSDecimalNumber, Any, Array, Dictionary, Data> ||
    Integer<T> || std::convertible_to<const T&, std::string_view> || std::derived_from<T, JSON>;

/// Whatever a loop goes through from `begin` to `end`, arrays included.
template <class T>
concept JSONRange = requires(T& range) {
    {*std::begin(range)};
    {std::begin(range) != std::end(range)};
}
&&!std::same_as<std::iter_value_t<decltype(std::begin(std::declval<T&>()))>, T>;

/// A range of keys with their values, such as `std::map`.
template <class T>
concept JSONMap = JSONRange<T> && requires {
    typename T::mapped_type;
} && std::convertible_to<const typename T::key_type&, std::string_view>;

/// Of what values a range or map makes a `JSON`.
template <JSONRange T>
struct JSONRangeValue {
    /// What the range goes through.
    using type = std::iter_value_t<decltype(std::begin(std::declval<T&>()))>;
};
/// Of a map.
template <JSONMap T>
struct JSONRangeValue<T> {
    using type = typename T::mapped_type;  ///< What stands under the keys.
};

/// Whether a `JSON` is made of values of a type without being asked to: of those above, and of
/// optionals, ranges and maps of them.
template <class T>
inline constexpr bool isJSONValue = isJSONLeaf<T>;
template <class T>
inline constexpr bool isJSONValue<std::optional<T>> = isJSONValue<T>;
template <class T>
requires(!isJSONLeaf<T>) && JSONRange<T> inline constexpr bool isJSONValue<T> =
    isJSONValue<typename JSONRangeValue<T>::type>;

/// What a `JSON` can be made of: a truth value, a number, a text, null, and what is made of these.
template <class T>
concept CanBeJSON = isJSONValue<std::remove_cvref_t<T>>;

/// What could be taken for something that JSON holds.
template <class T>
concept TupleLike = requires {
    std::tuple_size<T>::value;
};
template <class T>
concept VariantLike = requires {
    std::variant_size<T>::value;
};
template <class T>
concept OptionalLike = requires(const T& value) {
    value.has_value();
};

/// An object of a class that JSON knows nothing of. It makes a `JSON` of type `unknown`, and only
/// where that is asked for by name.
template <class T>
inline constexpr bool isForeignToJSON = std::is_class_v<T> && !CanBeJSON<T> && !JSONRange<T> &&
                                        !TupleLike<T> && !VariantLike<T> && !OptionalLike<T>;

/// What no `JSON` is made of: neither values nor objects are pointers, enumerations, characters and
/// `long double`.
template <class T>
concept CannotBeJSON = !CanBeJSON<T> && !isForeignToJSON<std::remove_cvref_t<T>>;

}  // namespace InkoraKit
