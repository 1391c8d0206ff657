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
    using value_type = Any;
    using const_iterator = const Any*;

    Array();
    Array(std::initializer_list<Any> elements);

    std::size_t size() const noexcept;
    bool empty() const noexcept { return size() == 0; }

    /// The element at a position below `size()`. It lives until the array changes or ends; a copy
    /// lives on its own.
    const Any& operator[](std::size_t position) const noexcept { return begin()[position]; }
    const Any* begin() const noexcept;
    const Any* end() const noexcept { return begin() + size(); }

    void reserve(std::size_t count);
    void append(Any element);
    /// Replaces the element at a position below `size()`.
    void set(std::size_t position, Any element);

    std::string description() const { return contents_.description(); }
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
