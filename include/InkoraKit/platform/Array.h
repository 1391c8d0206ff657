#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/Any.h>

#include <cstddef>
#include <initializer_list>
#include <string>
#include <utility>

namespace InkoraKit {

/// The platform's array: values of any type in order. Contents are shared by copies until one of
/// them changes.
class INKORA_EXPORT Array {
public:
    /// As the standard's containers name them.
    using value_type = Any;
    using const_iterator = const Any*;

    /// These elements in their order, or none.
    Array();
    Array(std::initializer_list<Any> elements);

    /// How many elements there are, and whether there are none.
    std::size_t size() const noexcept;
    bool empty() const noexcept { return size() == 0; }

    /// The element at a position below `size()`. It lives until the array changes or ends; a copy
    /// lives on its own.
    const Any& operator[](std::size_t position) const noexcept { return begin()[position]; }
    /// The elements, one behind the other, until the array changes or ends.
    const Any* begin() const noexcept;
    const Any* end() const noexcept { return begin() + size(); }

    /// Makes room for so many elements in all.
    void reserve(std::size_t count);
    /// Adds an element at the end, in constant time on average.
    void append(Any element);
    /// Replaces the element at a position below `size()`.
    void set(std::size_t position, Any element);

    /// As JSON text, where the elements allow it: see `Any::description`.
    std::string description() const { return contents_.description(); }
    /// By the platform's equality, element by element: see `Any`.
    friend bool operator==(const Array&, const Array&) = default;

private:
    friend class Any;
    friend class Storage;
    explicit Array(Any contents) noexcept : contents_(std::move(contents)) {}

    Any contents_;  // always an array
};

template <class Elements>
Any Any::arrayOf(const Elements& elements) {
    Array array;
    array.reserve(elements.size());
    for (const typename Elements::value_type& element : elements) array.append(element);
    return array;
}

}  // namespace InkoraKit
