#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/Index.h>
#include <InkoraKit/JSONErrors.h>
#include <InkoraKit/JSONKey.h>
#include <InkoraKit/JSONValue.h>
#include <InkoraKit/Type.h>
#include <InkoraKit/platform/Any.h>
#include <InkoraKit/platform/Array.h>
#include <InkoraKit/platform/Data.h>
#include <InkoraKit/platform/Dictionary.h>
#include <InkoraKit/platform/JSONSerialization.h>
#include <InkoraKit/platform/NSError.h>
#include <InkoraKit/platform/NSNull.h>
#include <InkoraKit/platform/NSNumber.h>
#include <InkoraKit/platform/StringEncoding.h>
#include <InkoraKit/platform/URL.h>
#include <InkoraKit/writtingOptionsKeys.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <iosfwd>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>
#include <version>

#if defined(__cpp_lib_format)
#include <format>
#endif

namespace InkoraKit {

class JSONElements;
class JSONMemberIterator;
class JSONMembers;
class JSONPlace;

/// A JSON value (RFC 8259): a number, a text, a truth value, an array, a dictionary or null.
///
/// It never fails loudly. Whatever it is made of, there is a value; what JSON cannot hold becomes a
/// value of type `unknown` with an error. Reading a member that is not there, or of the wrong type,
/// gives a null that carries an error, and so does every step after it: a long path is read in one
/// expression and checked once.
///
///     JSON settings = JSON::parse(text);
///     const auto port = settings["server"]["ports"][0].intValue();
///     settings["server"]["name"] = "desk";
///
/// A value is a value: a copy never changes with its original. Copying takes constant time, since
/// copies share their contents until one of them changes, and then copies nothing but the arrays
/// and dictionaries on the path to the change.
///
/// Dictionaries keep the order in which their members were added.
///
/// Threads: one value is used by one thread at a time; copies may be used, changed and dropped on
/// different threads.
class INKORA_EXPORT JSON {
public:
    /// Null.
    JSON() noexcept = default;
    /// The same value; in constant time.
    JSON(const JSON& other) noexcept = default;
    /// The value of the other one, which becomes null.
    JSON(JSON&& other) noexcept = default;
    /// Frees what no other value shares; however deep it is nested.
    ~JSON() = default;

    /// The value that `T` stands for. An object of a class that JSON knows nothing of has to be
    /// named, and gives type `unknown` with `ErrorUnsupportedType`; so does a text that is not
    /// UTF-8.
    template <class T>
    requires(!CannotBeJSON<T> &&
             !std::derived_from<std::remove_cvref_t<T>, JSON>) explicit(!CanBeJSON<T>)
        JSON(T&& value)
        : JSON(made(std::forward<T>(value))) {}
    /// No pointer, enumeration, character, pair, variant or `long double` becomes a `JSON`.
    JSON(CannotBeJSON auto&&) = delete;  // JSON holds truth values, numbers, texts, ranges, maps

    /// A dictionary: `JSON{{"name", "desk"}, {"ports", std::vector{1, 2}}}`. Of two members with
    /// one key the last one counts. `JSON` values in a `Dictionary` become what they hold.
    JSON(std::initializer_list<std::pair<std::string_view, JSON>> members);

    /// Reads JSON text. What is no such text becomes null.
    /// @param error if given, is set to why the text could not be read
    explicit JSON(const Data& data, JSONSerialization::ReadingOptions options,
                  std::optional<NSError>* error = nullptr);

    /// An array: `JSON::arrayOf(1, "two", JSON())`.
    template <class... Elements>
    static JSON arrayOf(Elements&&... elements) {
        return JSON(std::vector<JSON>{JSON(std::forward<Elements>(elements))...});
    }

    /// Reads UTF-8 text, fragments included. What is no such text becomes null.
    static JSON parse(std::string_view text);
    /// The same, under the name that newer callers use.
    static JSON parseJSON(std::string_view text) { return parse(text); }

    /// Null. (`null()` asks a value whether it is.)
    static JSON nullJSON() noexcept { return {}; }

    /// The value of an object, unless its type would be `unknown`.
    static std::optional<JSON> fromRawValue(const Any& object);
    /// The same as `object()`.
    Any rawValue() const { return object(); }

    /// What the value is, as the platform's object. Null for null and unknown.
    Any object() const;
    /// Decides the type anew, and clears the error. An array of `JSON` values makes the type
    /// `array`, but brings back the elements of the array that this was last: use `=` for such.
    void setObject(Any object) &;

    /// What the value is.
    inline Type type() const noexcept;
    /// Why this value is not what was asked for.
    std::optional<NSError> error() const;
    /// Whether this is not the result of asking for what is not there. A JSON null is there.
    bool exists() const noexcept;

    /// Replaces the whole value. For the result of a subscript see `JSONPlace`.
    JSON& operator=(const JSON& other) & noexcept = default;
    /// The same; the other value becomes null.
    JSON& operator=(JSON&& other) & noexcept = default;

    // Reading and writing by type. The plain forms are empty when the type does not fit. The forms
    // with "Value" always answer: they convert, or give an empty value or zero. Setters decide the
    // type anew; setting an empty optional gives null.

    /// Of an array its elements.
    std::optional<std::vector<JSON>> array() const;
    /// The same, or none.
    std::vector<JSON> arrayValue() const;
    /// Of an array the platform's.
    std::optional<Array> arrayObject() const;
    /// Becomes the array.
    void setArrayObject(const std::optional<Array>& value) &;

    /// Of a dictionary its members, by their keys.
    std::optional<std::map<std::string, JSON, std::less<>>> dictionary() const;
    /// The same, or none.
    std::map<std::string, JSON, std::less<>> dictionaryValue() const;
    /// Of a dictionary the platform's, in the order of its members.
    std::optional<Dictionary> dictionaryObject() const;
    /// Becomes the dictionary.
    void setDictionaryObject(const std::optional<Dictionary>& value) &;

    /// Of a truth value the same.
    std::optional<bool> bool_() const noexcept;
    /// Becomes the truth value.
    void setBool(std::optional<bool> value) &;
    /// Of a number whether it is not zero; of a text whether it is "true", "y" or "t" in any case.
    bool boolValue() const;
    /// Becomes the truth value.
    void setBoolValue(bool value) & { setBool(value); }

    /// Of a text the same.
    std::optional<std::string> string() const;
    /// Becomes the text.
    void setString(const std::optional<std::string>& value) &;
    /// Of a number or truth value its text.
    std::string stringValue() const;
    /// Of a text the text, without copying it; of anything else nothing. It lives as long as this
    /// value, and until that changes.
    inline std::string_view stringView() const& noexcept;
    std::string_view stringView() && = delete;  // it would not outlive the expression
    /// Becomes the text.
    void setStringValue(std::string_view value) &;

    /// Of a number the same, of a truth value 1 or 0.
    std::optional<NSNumber> number() const;
    /// Becomes the number.
    void setNumber(const std::optional<NSNumber>& value) &;
    /// Of a text the decimal number at its start, whatever the locale, or zero.
    NSNumber numberValue() const;
    /// Becomes the number.
    void setNumberValue(const NSNumber& value) & { setNumber(value); }

    /// Of null, and of what is not there, the platform's.
    std::optional<NSNull> null() const noexcept;
    /// Becomes null.
    void setNull() & { setObject(NSNull()); }

    /// Of a text the URL that it is; characters that a URL's query may not contain are first
    /// percent-encoded, unless the text holds a percent escape already.
    std::optional<URL> url() const;
    /// Becomes the text of the URL.
    void setUrl(const std::optional<URL>& value) &;

    // The number (of the "Value" forms, the number value) in each width, as `NSNumber` converts:
    // cut off, and wrapped around where it does not fit.

    std::optional<double> double_() const;        ///< The number in double precision.
    std::optional<float> float_() const;          ///< The number in single precision.
    std::optional<std::int64_t> int_() const;     ///< The number as an integer of 64 bits.
    std::optional<std::uint64_t> uInt() const;    ///< The same without a sign.
    std::optional<std::int8_t> int8() const;      ///< The number as an integer of 8 bits.
    std::optional<std::uint8_t> uInt8() const;    ///< The same without a sign.
    std::optional<std::int16_t> int16() const;    ///< The number as an integer of 16 bits.
    std::optional<std::uint16_t> uInt16() const;  ///< The same without a sign.
    std::optional<std::int32_t> int32() const;    ///< The number as an integer of 32 bits.
    std::optional<std::uint32_t> uInt32() const;  ///< The same without a sign.
    std::optional<std::int64_t> int64() const;    ///< The number as an integer of 64 bits.
    std::optional<std::uint64_t> uInt64() const;  ///< The same without a sign.

    double doubleValue() const;         ///< The number value in double precision.
    float floatValue() const;           ///< The number value in single precision.
    std::int64_t intValue() const;      ///< The number value as an integer of 64 bits.
    std::uint64_t uIntValue() const;    ///< The same without a sign.
    std::int8_t int8Value() const;      ///< The number value as an integer of 8 bits.
    std::uint8_t uInt8Value() const;    ///< The same without a sign.
    std::int16_t int16Value() const;    ///< The number value as an integer of 16 bits.
    std::uint16_t uInt16Value() const;  ///< The same without a sign.
    std::int32_t int32Value() const;    ///< The number value as an integer of 32 bits.
    std::uint32_t uInt32Value() const;  ///< The same without a sign.
    std::int64_t int64Value() const;    ///< The number value as an integer of 64 bits.
    std::uint64_t uInt64Value() const;  ///< The same without a sign.

    void setDouble(std::optional<double> value) &;         ///< Becomes the number, a double.
    void setFloat(std::optional<float> value) &;           ///< Becomes the number, a float.
    void setInt(std::optional<std::int64_t> value) &;      ///< Becomes the integer.
    void setUInt(std::optional<std::uint64_t> value) &;    ///< Becomes the integer.
    void setInt8(std::optional<std::int8_t> value) &;      ///< Becomes the integer.
    void setUInt8(std::optional<std::uint8_t> value) &;    ///< Becomes the integer.
    void setInt16(std::optional<std::int16_t> value) &;    ///< Becomes the integer.
    void setUInt16(std::optional<std::uint16_t> value) &;  ///< Becomes the integer.
    void setInt32(std::optional<std::int32_t> value) &;    ///< Becomes the integer.
    void setUInt32(std::optional<std::uint32_t> value) &;  ///< Becomes the integer.
    void setInt64(std::optional<std::int64_t> value) &;    ///< Becomes the integer.
    void setUInt64(std::optional<std::uint64_t> value) &;  ///< Becomes the integer.

    void setDoubleValue(double value) & { setDouble(value); }     ///< Becomes the number, a double.
    void setFloatValue(float value) & { setFloat(value); }        ///< Becomes the number, a float.
    void setIntValue(std::int64_t value) & { setInt(value); }     ///< Becomes the integer.
    void setUIntValue(std::uint64_t value) & { setUInt(value); }  ///< Becomes the integer.
    void setInt8Value(std::int8_t value) & { setInt8(value); }    ///< Becomes the integer.
    void setUInt8Value(std::uint8_t value) & { setUInt8(value); }     ///< Becomes the integer.
    void setInt16Value(std::int16_t value) & { setInt16(value); }     ///< Becomes the integer.
    void setUInt16Value(std::uint16_t value) & { setUInt16(value); }  ///< Becomes the integer.
    void setInt32Value(std::int32_t value) & { setInt32(value); }     ///< Becomes the integer.
    void setUInt32Value(std::uint32_t value) & { setUInt32(value); }  ///< Becomes the integer.
    void setInt64Value(std::int64_t value) & { setInt64(value); }     ///< Becomes the integer.
    void setUInt64Value(std::uint64_t value) & { setUInt64(value); }  ///< Becomes the integer.

    // Navigation. Reading never fails: see `error()`. Writing does what the types allow and nothing
    // else: it sets a member of a dictionary, or an element that the array has.

    /// The element or member, as a value of its own; null with an error if it is not there.
    template <JSONSubscriptType Step>
    JSON operator[](const Step& step) const& {
        const AnySlot* const found = part(value_.slot(), step);
        return found ? shown(*found) : otherPart(value_.slot(), stepView(step));
    }
    /// The same of a value that is not needed any more.
    template <JSONSubscriptType Step>
    JSON operator[](const Step& step) && {
        const AnySlot* const found = part(value_.slot(), step);
        return found ? JSON(std::move(*this), *found) : otherPart(value_.slot(), stepView(step));
    }
    /// The same of a value that may change: assigning to the result writes it.
    template <JSONSubscriptType Step>
    JSONPlace operator[](const Step& step) &;

    /// The value at the end of a path: `json[{"pens", 0, "name"}]`. An empty path is the value
    /// itself, and cannot be written.
    JSON operator[](const JSONPath& path) const&;
    /// The same of a value that may change: assigning to the result writes it.
    JSONPlace operator[](const JSONPath& path) &;

    // Reading without owning. What these give lives as long as this value, and until that changes:
    // nothing is counted, nothing is copied.

    /// The value at the end of the steps, or null where they lead nowhere:
    /// `json.find("pens", 0, "name")`.
    template <JSONSubscriptType... Steps>
    const JSON* find(const Steps&... steps) const& {
        const AnySlot* place = &value_.slot();
        ((place = place ? shownPart(*place, steps) : nullptr), ...);
        return place ? &shown(*place) : nullptr;
    }
    template <JSONSubscriptType... Steps>
    const JSON* find(const Steps&... steps) && = delete;  // it would not outlive the expression

    /// The elements of an array; of anything else none.
    inline JSONElements elements() const& noexcept;
    JSONElements elements() && = delete;  // they would not outlive the expression
    /// The members of a dictionary in their order; of anything else none.
    inline JSONMembers members() const& noexcept;
    JSONMembers members() && = delete;  // they would not outlive the expression

    // The value as a collection of its elements or members. Other types have none.

    /// A position of the collection.
    using Index = InkoraKit::Index<Any>;
    /// Goes through the collection.
    using const_iterator = JSONMemberIterator;

    /// The first position.
    Index startIndex() const noexcept;
    /// The position after the last one.
    Index endIndex() const noexcept;
    /// The position after one that is not the end.
    Index indexAfter(const Index& position) const noexcept;
    /// The element or member at a position before the end; the null position gives ("", null).
    std::pair<std::string, JSON> operator[](const Index& position) const;

    /// `for (const auto& [key, value] : json)`; the keys of an array are "0", "1", …
    /// The contents are those at the start of the loop, whatever it does to the value.
    inline const_iterator begin() const;
    /// Where such a loop ends.
    inline const_iterator end() const noexcept;
    /// How many elements or members there are.
    inline std::size_t count() const noexcept;
    /// The same.
    std::size_t size() const noexcept { return count(); }
    /// Whether there are none.
    bool isEmpty() const noexcept { return count() == 0; }

    // Text.

    /// The text of an array or dictionary, in UTF-8.
    /// @throws NSError `ErrorInvalidJSON` for any other value, and for one that JSON cannot hold
    Data rawData(
        JSONSerialization::WritingOptions options = JSONSerialization::WritingOptions::none) const;

    /// The text; of a text itself, without quotes. Absent when there is none: of `unknown`, and of
    /// an array or dictionary that `rawData` refuses. `encoding` names how the bytes of the text of
    /// an array or dictionary are to be understood.
    std::optional<std::string> rawString(
        StringEncoding encoding = StringEncoding::utf8,
        JSONSerialization::WritingOptions options =
            JSONSerialization::WritingOptions::prettyPrinted) const;
    /// The same. A negative `maxObjextDepth` leaves a line on the console as well.
    std::optional<std::string> rawString(const std::map<writtingOptionsKeys, Any>& options) const;

    /// The text, pretty-printed, or "unknown".
    std::string description() const;
    /// The same.
    std::string debugDescription() const { return description(); }

    /// Merges the other value into this one: members of dictionaries are merged deeply, arrays are
    /// joined, anything else is replaced by the other's.
    /// @throws NSError `ErrorWrongType` when the two types differ; the value stays as it was.
    void merge(const JSON& other) &;
    /// A copy into which the other value is merged.
    /// @throws NSError `ErrorWrongType` when the two types differ
    JSON merged(const JSON& other) const;

    /// A copy that shares no memory with the document that the value came from. Worth its time
    /// where a small part outlives a large document.
    JSON detached() const;

    // Comparing. Values of different types are neither equal nor in any order, nor is anything to
    // `unknown`. Truth values, arrays, dictionaries and nulls are equal or in no order.

    /// Whether both are of one type and equal: numbers by their values, dictionaries in any order.
    friend INKORA_EXPORT bool operator==(const JSON& left, const JSON& right);
    /// Numbers by their values, texts by their bytes.
    friend INKORA_EXPORT bool operator<(const JSON& left, const JSON& right);
    /// Less or equal.
    friend INKORA_EXPORT bool operator<=(const JSON& left, const JSON& right);
    /// The other way round.
    friend bool operator>(const JSON& left, const JSON& right) { return right < left; }
    /// The other way round.
    friend bool operator>=(const JSON& left, const JSON& right) { return right <= left; }

    /// Equal values have equal hashes.
    std::size_t hash() const;

    /// Writes `description()`.
    friend INKORA_EXPORT std::ostream& operator<<(std::ostream& stream, const JSON& json);

private:
    friend class JSONElements;
    friend class JSONMemberIterator;
    friend class JSONMembers;
    friend class JSONPlace;

    /// What only few values have, kept as an object in place of the value: why a subscript gave a
    /// null, the array that the value was last, and parts that have to be converted to be shown.
    struct Aside;

    /// Part of a value that is not needed any more, and becomes null.
    JSON(JSON&& container, const AnySlot& part)
    noexcept : value_(std::move(container.value_), part) {}

    /// What the value is.
    const Any& contents() const noexcept {
        return value_.slot().tag() == AnySlot::object ? contentsOfObject(value_) : value_;
    }
    /// The same, with every part of a container such that a `JSON` can show it as it stands.
    const Any& shownContents() const noexcept {
        return value_.slot().tag() == AnySlot::object ? shownContentsOfObject(value_) : value_;
    }
    [[gnu::cold]] static const Any& contentsOfObject(const Any& value) noexcept;
    [[gnu::cold]] static const Any& shownContentsOfObject(const Any& value) noexcept;
    static const JSON& shown(const AnySlot& part) noexcept {
        return reinterpret_cast<const JSON&>(part);  // of which a JSON consists
    }

    const Aside* aside() const noexcept;
    /// Takes out what stands aside for as long as the contents change.
    Any takeFormerArray();
    /// Puts aside what has to be.
    void settle(Any formerArray = {});

    // Steps and parts. These are static and take slots, since a value whose address is not taken
    // can live in registers.

    template <JSONSubscriptType Step>
    static AnySlot stepView(const Step& step) noexcept {
        if constexpr (Integer<Step>) {
            return {AnySlot::int64, static_cast<std::uint64_t>(JSONKey::clamped(step))};
        } else {
            return AnySlot::view(step);
        }
    }
    static AnySlot stepView(const JSONKey& key) noexcept {
        return key.index() ? stepView(*key.index()) : stepView(*key.key());
    }
    static AnySlot stepView(AnySlot view) noexcept { return view; }

    /// What the value has at the step; null if there is nothing, or something to convert.
    [[gnu::always_inline]] static const AnySlot* part(const AnySlot& value, AnySlot step) noexcept {
        const bool isPosition = step.tag() == AnySlot::int64;
        if (isPosition ? value.isArray() : value.tag() == AnySlot::dictionary) [[likely]]
            return isPosition ? value.element(step.payload()) : AnySlot::member(value, step);
        return nullptr;
    }
    /// The same for a position, of which a view is made only where it is needed.
    [[gnu::always_inline]] static const AnySlot* part(const AnySlot& value,
                                                      Integer auto position) noexcept {
        return value.isArray() ? value.element(static_cast<std::uint64_t>(position)) : nullptr;
    }
    [[gnu::always_inline]] static const AnySlot* part(const AnySlot& value,
                                                      std::string_view key) noexcept {
        return part(value, AnySlot::view(key));
    }
    /// What the value has at a step where there is no such part: the part as it is converted; or
    /// null, with the error that the value has already, or else the one of the step.
    static JSON otherPart(AnySlot value, AnySlot step);
    static JSON missing(const JSON& container, AnySlot step);

    /// What the value has at the step, as it is shown; null if there is nothing.
    template <class Step>
    static const AnySlot* shownPart(const AnySlot& value, const Step& step) noexcept {
        const AnySlot* const found = part(value, step);
        return found || value.tag() != AnySlot::object ? found
                                                       : partOfObject(value, stepView(step));
    }
    [[gnu::cold]] static const AnySlot* partOfObject(AnySlot value, AnySlot step) noexcept;

    void write(std::span<const AnySlot> steps, Any object);

    static JSON fromAny(Any value);
    static JSON fromElements(std::span<const JSON> elements);
    static Any withShownParts(const Any& container);
    [[gnu::cold]] static double convertedToDouble(AnySlot value);
    [[gnu::cold]] static std::int64_t convertedToInteger(AnySlot value);

    /// What a C++ value becomes: ranges and maps, at any depth, become arrays and dictionaries of
    /// what their values hold.
    template <class T>
    static JSON made(T&& value) {
        using Value = std::remove_cvref_t<T>;
        if constexpr (std::is_arithmetic_v<Value> ||
                      std::convertible_to<const Value&, std::string_view>) {
            JSON result;
            result.value_ = Any(std::forward<T>(value));
            return result;
        } else if constexpr (std::same_as<Value, Data>) {
            return JSON(value, JSONSerialization::ReadingOptions::allowFragments);
        } else if constexpr (isPlatformValue<Value> || !isJSONValue<Value>) {
            return fromAny(Any(std::forward<T>(value)));
        } else if constexpr (requires { value.has_value(); }) {
            return value ? JSON(*std::forward<T>(value)) : JSON();
        } else if constexpr (JSONMap<Value>) {
            Dictionary members;
            for (auto&& [key, member] : value) members.set(key, JSON(member).object());
            return fromAny(std::move(members));
        } else {
            std::vector<JSON> elements;
            if constexpr (requires { value.size(); }) elements.reserve(value.size());
            for (auto&& element : value) elements.emplace_back(element);
            return fromElements(elements);
        }
    }

    Any value_;  // absent means null
};

static_assert(sizeof(JSON) == sizeof(Any));  // so that parts can be shown where they are

inline std::size_t JSON::count() const noexcept {
    const AnySlot& slot = contents().slot();
    return slot.isContainer() ? slot.header().count : 0;
}

inline Type JSON::type() const noexcept {
    // By tag, three bits each: a shift takes less time than a look into a table.
    constexpr std::uint64_t types = [] {
        using enum Type;
        std::uint64_t packed = 0;
        int place = 0;
        for (const Type type :
             {null, null, bool_, number, number, number, number, number, number, number, string,
              string, unknown, number, unknown, dictionary, array})
            packed |= static_cast<std::uint64_t>(type) << 3 * place++;
        return packed;
    }();
    return static_cast<Type>(types >> 3 * contents().slot().tag() & 7);
}

inline std::string_view JSON::stringView() const& noexcept {
    const AnySlot& slot = contents().slot();
    return slot.isText() ? slot.text() : std::string_view();
}

inline std::int64_t JSON::intValue() const {
    const AnySlot& slot = value_.slot();
    return slot.isInteger() ? slot.integer() : convertedToInteger(slot);
}

inline double JSON::doubleValue() const {
    const AnySlot& slot = value_.slot();
    if (slot.tag() == AnySlot::float64) return slot.real();
    return slot.isInteger() ? static_cast<double>(slot.integer()) : convertedToDouble(slot);
}

}  // namespace InkoraKit

template <>
struct std::hash<InkoraKit::JSON> {
    std::size_t operator()(const InkoraKit::JSON& json) const { return json.hash(); }
};

#if defined(__cpp_lib_format)
/// Formats `description()`, with the format specification of a text.
template <std::derived_from<InkoraKit::JSON> Value>
struct std::formatter<Value> : std::formatter<std::string_view> {
    template <class Context>
    auto format(const Value& json, Context& context) const {
        return std::formatter<std::string_view>::format(json.description(), context);
    }
};
#endif

#include <InkoraKit/JSONIteration.h>
#include <InkoraKit/JSONPlace.h>
#include <InkoraKit/JSONViews.h>
