#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/AnySlot.h>
#include <InkoraKit/platform/NSNull.h>
#include <InkoraKit/platform/NSNumber.h>
#include <InkoraKit/platform/Owner.h>
#include <InkoraKit/platform/Printing.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <unordered_map>
#include <utility>
#include <vector>

namespace InkoraKit {

class Any;
class Array;
class Dictionary;

/// Whether `Any` keeps values of a type as the platform's own: numbers, texts, null, arrays,
/// dictionaries, and the standard containers of these. Everything else it keeps as an object.
template <class T>
inline constexpr bool isPlatformValue =
    std::is_arithmetic_v<T> || std::convertible_to<const T&, std::string_view>;
template <class T>
requires std::same_as<T, Any> || std::same_as<T, Array> || std::same_as<T, Dictionary> ||
    std::same_as<T, NSNull> || std::same_as<T, NSNumber> || std::same_as<T, NSDecimalNumber> ||
    std::same_as<T, std::nullopt_t> || std::same_as<T, std::nullptr_t>
inline constexpr bool isPlatformValue<T> = true;
template <class T>
inline constexpr bool isPlatformValue<std::optional<T>> = isPlatformValue<T>;
template <class T>
inline constexpr bool isPlatformValue<std::vector<T>> = isPlatformValue<T>;
template <class T, class Order>
inline constexpr bool isPlatformValue<std::map<std::string, T, Order>> = isPlatformValue<T>;
template <class T, class Hash, class Equal>
inline constexpr bool isPlatformValue<std::unordered_map<std::string, T, Hash, Equal>> =
    isPlatformValue<T>;

/// The type that `Any` keeps an object of a type as: for what stands for something else.
template <class T>
struct KeptAs {
    using type = T;  ///< The type itself, unless it is specialised.
};

/// Whether values of a type can be compared, and what containers of it hold can be, too: containers
/// claim that they can without asking.
template <class T>
inline constexpr bool isComparable = std::equality_comparable<T>;
template <std::equality_comparable T>
requires requires {
    typename T::value_type;
}
inline constexpr bool isComparable<T> = isComparable<typename T::value_type>;
template <class First, class Second>
inline constexpr bool isComparable<std::pair<First, Second>> =
    isComparable<First>&& isComparable<Second>;

/// A value of any type, or none: the dynamic value of the platform, which arrays and dictionaries
/// hold. Sixteen bytes; immutable contents are shared by copies, so that a copy costs one count
/// whatever it holds.
///
/// Arithmetic values are kept as numbers of their kind, texts as UTF-8, `std::vector` and
/// `std::map` of platform values as `Array` and `Dictionary`, an empty `std::optional` and
/// `nullptr` as absent. Values of any other type are kept as they are, as objects.
///
/// Threads: one value is used by one thread at a time; copies may be used, changed and dropped on
/// different threads.
class INKORA_EXPORT Any {
public:
    /// What a value is.
    enum class Kind {
        absent,      ///< no value
        null,        ///< the null object
        number,      ///< a number or truth value
        text,        ///< a text in UTF-8
        array,       ///< an `Array`
        dictionary,  ///< a `Dictionary`
        object       ///< anything else
    };

    /// Absent.
    Any() noexcept = default;
    /// The value, kept as said above. A null pointer to characters is absent, and a `char` does not
    /// compile.
    template <class T>
    requires(!std::same_as<std::remove_cvref_t<T>, Any>) Any(T&& value) {
        keep(std::forward<T>(value));
    }

    /// @cond internal

    /// Part of the contents of a value that is not needed any more, and becomes absent: where both
    /// live in the same memory, its being a user is handed over. For the kit itself.
    Any(Any&& container, const AnySlot& part) noexcept : slot_(part) {
        const AnySlot left = std::exchange(container.slot_, {});
        const bool isShared = slot_.isShared();
        if (isShared) slot_.setCounted();
        if (isShared && left.isCounted() && slot_.owner() == left.owner()) return;
        if (isShared) slot_.owner()->retain();
        drop(left);
    }
    /// What a slot is a view of: an integer, or a text, which is copied. For the kit itself.
    [[gnu::always_inline]] static Any owned(AnySlot view) {
        if (view.tag() == AnySlot::longText)
            return Any(
                std::string_view(reinterpret_cast<const char*>(view.pointer()), view.size()));
        Any result;
        result.slot_ = view;
        return result;
    }
    /// @endcond

    /// The same value, in constant time. What is moved from becomes absent.
    Any(const Any& other) noexcept : slot_(other.slot_) {
        if (!slot_.isShared()) return;
        slot_.setCounted();
        slot_.owner()->retain();
    }
    Any(Any&& other) noexcept : slot_(std::exchange(other.slot_, {})) {}
    Any& operator=(const Any& other) noexcept { return *this = Any(other); }
    Any& operator=(Any&& other) noexcept {
        const AnySlot taken = std::exchange(other.slot_, {});
        drop(std::exchange(slot_, taken));
        return *this;
    }
    ~Any() { drop(slot_); }

    /// Texts that are not well-formed UTF-8 are of kind `object`, since no JSON text can hold them.
    Kind kind() const noexcept;
    /// Whether it is not absent. Null is a value.
    bool hasValue() const noexcept { return slot_.tag() != AnySlot::absent; }
    /// Whether it is of kind `object`.
    bool isObject() const noexcept {
        return slot_.tag() == AnySlot::object || slot_.tag() == AnySlot::malformedText;
    }

    /// @cond internal

    /// Becomes the other value without counting as a user of its contents: what keeps these alive
    /// has to outlive this. Copies of this are like those of any other value.
    void borrow(const Any& value) noexcept {
        drop(slot_);
        slot_ = value.slot_;
        slot_.clearCounted();
    }

    /// How the value is kept. For the kit itself.
    const AnySlot& slot() const noexcept { return slot_; }
    /// @endcond

    /// The value if it is a `T`: an optional for `NSNumber`, `std::string`, `std::string_view`
    /// (valid for as long as this value is), `NSNull`, `Array` and `Dictionary`; for any other
    /// type a pointer, which is valid for as long as a copy of this value is.
    template <class T>
    auto as() const {
        if constexpr (std::same_as<T, NSNumber>) {
            return slot_.isNumber() ? std::optional(number()) : std::nullopt;
        } else if constexpr (std::same_as<T, std::string> || std::same_as<T, std::string_view>) {
            return hasText() ? std::optional<T>(slot_.text()) : std::nullopt;
        } else if constexpr (std::same_as<T, NSNull>) {
            return slot_.tag() == AnySlot::null ? std::optional(NSNull()) : std::nullopt;
        } else if constexpr (std::same_as<T, Array>) {
            return slot_.tag() == AnySlot::array ? std::optional(T(*this)) : std::nullopt;
        } else if constexpr (std::same_as<T, Dictionary>) {
            return slot_.tag() == AnySlot::dictionary ? std::optional(T(*this)) : std::nullopt;
        } else {
            const Object* held = object();
            const bool isOne = held && held->type() == typeid(T);
            return isOne ? &static_cast<const ObjectOf<T>&>(*held).value : nullptr;
        }
    }

    /// The platform's equality. Numbers of whatever kinds are equal when their values are (true
    /// equals 1), texts when their bytes are, arrays and dictionaries when their contents are, the
    /// latter in any order. Two absent values are equal. Objects are equal when they are of one
    /// type and equal by `isEqual` or `==`; without these, only to copies of themselves.
    friend INKORA_EXPORT bool operator==(const Any& left, const Any& right);

    /// Equal values have equal hashes.
    std::size_t hash() const;

    /// Numbers and texts as they print, arrays and dictionaries as JSON, "(null)" when absent.
    std::string description() const;

private:
    friend class Storage;

    struct Object {
        Object() = default;
        Object(const Object&) = delete;
        Object& operator=(const Object&) = delete;
        virtual ~Object() = default;
        virtual const std::type_info& type() const noexcept = 0;
        virtual bool equals(const Object& other) const = 0;
        virtual std::string description() const = 0;
    };

    // Hidden: each library has its own of the types that it keeps.
    template <class T>
    struct [[gnu::visibility("hidden")]] ObjectOf final : Object {
        explicit ObjectOf(T kept) : value(std::move(kept)) {}
        const std::type_info& type() const noexcept override {
            return typeid(T);
        }
        bool equals(const Object& other) const override {
            if constexpr (requires { value.isEqual(value); }) {
                return other.type() == typeid(T) && value.isEqual(of(other));
            } else if constexpr (isComparable<T>) {
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
        static const T& of(const Object& object) {
            return static_cast<const ObjectOf<T>&>(object).value;
        }
        T value;
    };

    template <class T>
    void keep(T&& value) {
        using Value = std::remove_cvref_t<T>;
        static_assert(!std::same_as<Value, char>, "a character is neither a number nor a text");
        if constexpr (std::same_as<Value, std::nullopt_t> || std::same_as<Value, std::nullptr_t>) {
            // stays absent
        } else if constexpr (std::same_as<Value, NSNull>) {
            slot_ = AnySlot(AnySlot::null, std::uint64_t{0});
        } else if constexpr (std::is_pointer_v<Value> &&
                             std::convertible_to<const Value&, std::string_view>) {
            if (value) keepText(value);
        } else if constexpr (std::convertible_to<const Value&, std::string_view>) {
            keepText(value);
        } else if constexpr (std::is_arithmetic_v<Value> || std::same_as<Value, NSNumber> ||
                             std::same_as<Value, NSDecimalNumber>) {
            keepNumber(value);
        } else if constexpr (std::same_as<Value, Array> || std::same_as<Value, Dictionary>) {
            *this = value.contents_;
        } else if constexpr (!isPlatformValue<Value>) {
            using Kept = typename KeptAs<Value>::type;
            keepObject(std::make_unique<ObjectOf<Kept>>(Kept(std::forward<T>(value))));
        } else if constexpr (requires { value.has_value(); }) {
            if (value) *this = Any(*std::forward<T>(value));
        } else if constexpr (requires { typename Value::mapped_type; }) {
            *this = dictionaryOf(value);
        } else {
            *this = arrayOf(value);
        }
    }

    template <class Elements>
    static inline Any arrayOf(const Elements& elements);
    template <class Members>
    static inline Any dictionaryOf(const Members& members);

    void keepText(std::string_view text);
    void keepNumber(const NSNumber& number) {
        if (number.isDecimal()) return keepDecimal(number.decimal_);
        const auto tag = static_cast<AnySlot::Tag>(static_cast<int>(AnySlot::boolean) +
                                                   static_cast<int>(number.kind_));
        slot_ = AnySlot(tag, number.isReal() ? AnySlot::bitsOf(number.real_)
                                             : static_cast<std::uint64_t>(number.integer_));
    }
    void keepDecimal(const NSDecimalNumber& decimal);
    void keepObject(std::unique_ptr<Object> object);

    bool hasText() const noexcept {
        return slot_.isText() || slot_.tag() == AnySlot::malformedText;
    }
    NSNumber number() const noexcept;
    const Object* object() const noexcept;

    // The slot comes by value: a value whose address is not taken can live in registers.
    [[gnu::always_inline]] static void drop(AnySlot slot) noexcept {
        if (slot.isCounted() && slot.owner()->release()) takeDown(slot.owner());
    }
    static void takeDown(Owner* owner) noexcept;

    AnySlot slot_;
};

}  // namespace InkoraKit

template <>
struct std::hash<InkoraKit::Any> {
    std::size_t operator()(const InkoraKit::Any& value) const { return value.hash(); }
};

#include <InkoraKit/platform/Array.h>
#include <InkoraKit/platform/Dictionary.h>
