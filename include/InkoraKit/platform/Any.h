#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/NSNumber.h>
#include <InkoraKit/platform/Printing.h>

#include <concepts>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

namespace InkoraKit {

/// A value of any type, or none: what dictionaries of the platform hold. The value is immutable
/// and shared by copies. Arithmetic values are kept as `NSNumber`, texts as `std::string`.
class Any {
public:
    Any() = default;

    template <class T>
    requires(!std::same_as<std::decay_t<T>, Any>) Any(T&& value)
        : box_(std::make_shared<Box<Kept<std::decay_t<T>>>>(
              Kept<std::decay_t<T>>(std::forward<T>(value)))) {}

    bool hasValue() const noexcept { return box_ != nullptr; }

    /// The value if it is a `T`, otherwise null. Valid for as long as this `Any` is.
    template <class T>
    const T* as() const noexcept {
        if (!box_ || box_->type() != typeid(T)) return nullptr;
        return &static_cast<const Box<T>&>(*box_).value;
    }

    /// Equal when both are absent, or both hold equal values of one type. Values of a type without
    /// equality are equal to nothing but copies of themselves.
    friend bool operator==(const Any& left, const Any& right) {
        if (left.box_ == right.box_) return true;
        return left.box_ && right.box_ && left.box_->equals(*right.box_);
    }

    std::string description() const { return box_ ? box_->description() : "(null)"; }

private:
    template <class T>
    using Kept = std::conditional_t<
        std::is_arithmetic_v<T> || std::is_same_v<T, NSDecimalNumber>, NSNumber,
        std::conditional_t<std::is_convertible_v<T, std::string_view>, std::string, T>>;

    struct Holder {
        virtual ~Holder() = default;
        virtual const std::type_info& type() const noexcept = 0;
        virtual bool equals(const Holder& other) const = 0;
        virtual std::string description() const = 0;
    };

    template <class T>
    struct Box final : Holder {
        explicit Box(T kept) : value(std::move(kept)) {}
        const std::type_info& type() const noexcept override { return typeid(T); }
        bool equals(const Holder& other) const override {
            if constexpr (requires { value.isEqual(value); }) {
                return other.type() == typeid(T) && value.isEqual(of(other));
            } else if constexpr (std::equality_comparable<T>) {
                return other.type() == typeid(T) && value == of(other);
            } else {
                return this == &other;
            }
        }
        std::string description() const override {
            if constexpr (requires { printed(value); }) {
                return printed(value);
            } else {
                return "(object)";
            }
        }
        static const T& of(const Holder& holder) {
            return static_cast<const Box<T>&>(holder).value;
        }
        T value;
    };

    std::shared_ptr<const Holder> box_;
};

using Dictionary = std::map<std::string, Any, std::less<>>;

}  // namespace InkoraKit
