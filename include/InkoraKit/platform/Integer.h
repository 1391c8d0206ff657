#pragma once

#include <concepts>

namespace InkoraKit {

/// The integer types that hold numbers: `signed char` to `unsigned long long`, but neither truth
/// values nor characters.
template <class T>
concept Integer = std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char> &&
                  !std::same_as<T, wchar_t> && !std::same_as<T, char8_t> &&
                  !std::same_as<T, char16_t> && !std::same_as<T, char32_t>;

}  // namespace InkoraKit
