#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/Integer.h>

#include <concepts>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// @file
/// `printed(value)` is the text that the console shows for a value.
///
/// A type takes part by a member `std::string description() const`, or by an overload of `printed`
/// in its own namespace, which is how an enumeration prints its case names.
namespace InkoraKit {

/// A type whose values describe themselves.
template <class T>
concept Describable = requires(const T& value) {
    { value.description() } -> std::convertible_to<std::string>;
};

/// The text itself.
INKORA_EXPORT std::string printed(std::string_view text);

/// The shortest decimal that reads back to the same value, always with a fraction: 1.0, 0.1. Below
/// 1e-4, and above the range in which every integer has its own floating-point value (2^53 for
/// double, 2^24 for float), with an exponent: 1e-05, 1.5e+300.
INKORA_EXPORT std::string printed(double value);
INKORA_EXPORT std::string printed(float value);

/// "true" or "false".
template <std::same_as<bool> Bool>  // exactly: a pointer must not print as a truth value
std::string printed(Bool value) {
    return value ? "true" : "false";
}

/// In decimal, without grouping.
template <Integer Value>
std::string printed(Value value) {
    return std::to_string(value);
}

/// Its `description()`.
template <Describable Value>
std::string printed(const Value& value) {
    return value.description();
}

/// Whether the console has a text for values of the type. Lists and optionals follow what they
/// hold.
template <class T>
inline constexpr bool isPrintable = requires(const T& value) {
    printed(value);
};
template <class T>
inline constexpr bool isPrintable<std::vector<T>> = isPrintable<T>;
template <class T>
inline constexpr bool isPrintable<std::optional<T>> = isPrintable<T>;

/// List notation: [1, 255, 128, 0].
template <class Element>
requires isPrintable<Element> std::string printed(const std::vector<Element>& list);

/// Optional(5), or nil when absent.
template <class Value>
requires isPrintable<Value> std::string printed(const std::optional<Value>& value);

/// As `printed`, but a text is put in quotes: the form of a value within another.
template <class Value>
std::string printedInside(const Value& value) {
    if constexpr (std::convertible_to<const Value&, std::string_view>) {
        return '"' + printed(value) + '"';
    } else {
        return printed(value);
    }
}

template <class Element>
requires isPrintable<Element> std::string printed(const std::vector<Element>& list) {
    std::string text = "[";
    for (const Element& element : list) {
        if (text.size() > 1) text += ", ";
        text += printedInside(element);
    }
    return text + ']';
}

template <class Value>
requires isPrintable<Value> std::string printed(const std::optional<Value>& value) {
    return value ? "Optional(" + printedInside(*value) + ')' : "nil";
}

}  // namespace InkoraKit
