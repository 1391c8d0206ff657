#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/Index.h>
#include <InkoraKit/JSONErrors.h>
#include <InkoraKit/JSONKey.h>
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

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <iosfwd>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>
#include <version>

#if defined(__cpp_lib_format)
#include <format>
#endif

namespace InkoraKit {

class JSON;
struct JSONMember;
class JSONMemberIterator;
class JSONPlace;

/// What a `JSON` value is made of without being asked to: the platform's values, other `JSON`
/// values, bytes (which are read as JSON text), and the standard containers and optionals of these.
template <class T>
inline constexpr bool isJSONValue =
    isPlatformValue<T> || std::derived_from<T, JSON> || std::same_as<T, Data>;
template <class T>
inline constexpr bool isJSONValue<std::optional<T>> = isJSONValue<T>;
template <class T>
inline constexpr bool isJSONValue<std::vector<T>> = isJSONValue<T>;
template <class T, class Order>
inline constexpr bool isJSONValue<std::map<std::string, T, Order>> = isJSONValue<T>;
template <class T, class Hash, class Equal>
inline constexpr bool isJSONValue<std::unordered_map<std::string, T, Hash, Equal>> = isJSONValue<T>;

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
    JSON(const JSON& other) noexcept = default;
    JSON(JSON&& other) noexcept = default;
    ~JSON() = default;

    /// The value that `T` stands for. Any other type has to be named, and gives type `unknown`
    /// with `ErrorUnsupportedType`; so do texts that are not UTF-8.
    template <class T>
    requires(!std::derived_from<std::remove_cvref_t<T>, JSON>) explicit(
        !isJSONValue<std::remove_cvref_t<T>>) JSON(T&& value)
        : JSON(made(std::forward<T>(value))) {}

    /// A dictionary: `JSON{{"name", "desk"}, {"ports", std::vector{1, 2}}}`. Of two members with
    /// one key the last one counts.
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
    Any rawValue() const { return object(); }

    /// What the value is, as the platform's object. Null for null and unknown.
    Any object() const;
    /// Decides the type anew, and clears the error. An array of `JSON` values makes the type
    /// `array`, but brings back the elements of the array that this was last: use `=` for such.
    void setObject(Any object) &;

    Type type() const noexcept;
    /// Why this value is not what was asked for.
    std::optional<NSError> error() const;
    /// Whether this is not the result of asking for what is not there. A JSON null is there.
    bool exists() const noexcept;

    /// Assigning replaces the whole value. For the result of a subscript see `JSONPlace`.
    JSON& operator=(const JSON& other) & noexcept = default;
    JSON& operator=(JSON&& other) & noexcept = default;

    // Reading and writing by type. The plain forms are empty when the type does not fit. The forms
    // with "Value" always answer: they convert, or give an empty value or zero. Setters decide the
    // type anew; setting an empty optional gives null.

    std::optional<std::vector<JSON>> array() const;
    std::vector<JSON> arrayValue() const;
    std::optional<Array> arrayObject() const;
    void setArrayObject(const std::optional<Array>& value) &;

    std::optional<std::map<std::string, JSON, std::less<>>> dictionary() const;
    std::map<std::string, JSON, std::less<>> dictionaryValue() const;
    std::optional<Dictionary> dictionaryObject() const;
    void setDictionaryObject(const std::optional<Dictionary>& value) &;

    std::optional<bool> bool_() const noexcept;
    void setBool(std::optional<bool> value) &;
    /// Of a number whether it is not zero; of a text whether it is "true", "y" or "t" in any case.
    bool boolValue() const;
    void setBoolValue(bool value) &;

    std::optional<std::string> string() const;
    void setString(const std::optional<std::string>& value) &;
    /// Of a number or truth value its text.
    std::string stringValue() const;
    /// Of a text the text, without copying it; of anything else nothing. It lives as long as this
    /// value, and until that changes.
    std::string_view stringView() const& noexcept;
    std::string_view stringView() && = delete;
    void setStringValue(std::string_view value) &;

    /// Of a truth value 1 or 0.
    std::optional<NSNumber> number() const;
    void setNumber(const std::optional<NSNumber>& value) &;
    /// Of a text the decimal number at its start, whatever the locale, or zero.
    NSNumber numberValue() const;
    void setNumberValue(const NSNumber& value) &;

    std::optional<NSNull> null() const noexcept;
    void setNull() & { setObject(NSNull()); }

    /// Of a text the URL that it is; characters that a URL's query may not contain are first
    /// percent-encoded, unless the text holds a percent escape already.
    std::optional<URL> url() const;
    void setUrl(const std::optional<URL>& value) &;

    // The number (of the "Value" forms, the number value) in each width, as `NSNumber` converts:
    // cut off, and wrapped around where it does not fit.

    std::optional<double> double_() const;
    std::optional<float> float_() const;
    std::optional<std::int64_t> int_() const;
    std::optional<std::uint64_t> uInt() const;
    std::optional<std::int8_t> int8() const;
    std::optional<std::uint8_t> uInt8() const;
    std::optional<std::int16_t> int16() const;
    std::optional<std::uint16_t> uInt16() const;
    std::optional<std::int32_t> int32() const;
    std::optional<std::uint32_t> uInt32() const;
    std::optional<std::int64_t> int64() const;
    std::optional<std::uint64_t> uInt64() const;

    double doubleValue() const;
    float floatValue() const;
    std::int64_t intValue() const;
    std::uint64_t uIntValue() const;
    std::int8_t int8Value() const;
    std::uint8_t uInt8Value() const;
    std::int16_t int16Value() const;
    std::uint16_t uInt16Value() const;
    std::int32_t int32Value() const;
    std::uint32_t uInt32Value() const;
    std::int64_t int64Value() const;
    std::uint64_t uInt64Value() const;

    void setDouble(std::optional<double> value) &;
    void setFloat(std::optional<float> value) &;
    void setInt(std::optional<std::int64_t> value) &;
    void setUInt(std::optional<std::uint64_t> value) &;
    void setInt8(std::optional<std::int8_t> value) &;
    void setUInt8(std::optional<std::uint8_t> value) &;
    void setInt16(std::optional<std::int16_t> value) &;
    void setUInt16(std::optional<std::uint16_t> value) &;
    void setInt32(std::optional<std::int32_t> value) &;
    void setUInt32(std::optional<std::uint32_t> value) &;
    void setInt64(std::optional<std::int64_t> value) &;
    void setUInt64(std::optional<std::uint64_t> value) &;

    void setDoubleValue(double value) &;
    void setFloatValue(float value) &;
    void setIntValue(std::int64_t value) &;
    void setUIntValue(std::uint64_t value) &;
    void setInt8Value(std::int8_t value) &;
    void setUInt8Value(std::uint8_t value) &;
    void setInt16Value(std::int16_t value) &;
    void setUInt16Value(std::uint16_t value) &;
    void setInt32Value(std::int32_t value) &;
    void setUInt32Value(std::uint32_t value) &;
    void setInt64Value(std::int64_t value) &;
    void setUInt64Value(std::uint64_t value) &;

    // Navigation. Reading never fails: see `error()`. Writing does what the types allow and nothing
    // else: it sets a member of a dictionary, or an element that the array has.

    /// The element or member. On a value that may change, assigning to the result writes it.
    template <JSONSubscriptType Step>
    JSON operator[](const Step& step) const& {
        const Any* const found = element(contents(), simple(step));
        return isPlain(found) ? JSON(Plain(), *found) : unusual(found, stepOf(simple(step)));
    }
    template <JSONSubscriptType Step>
    JSON operator[](const Step& step) && {
        const Any* const found = element(contents(), simple(step));
        return isPlain(found) ? JSON(Plain(), std::move(value_), *found)
                              : unusual(found, stepOf(simple(step)));
    }
    template <JSONSubscriptType Step>
    JSONPlace operator[](const Step& step) &;

    /// The value at the end of a path: `json[{"pens", 0, "name"}]`. An empty path is the value
    /// itself, and cannot be written.
    JSON operator[](const JSONPath& path) const&;
    JSONPlace operator[](const JSONPath& path) &;

    // The value as a collection of its elements or members. Other types have none.

    using Index = InkoraKit::Index<Any>;
    using const_iterator = JSONMemberIterator;

    Index startIndex() const noexcept;
    Index endIndex() const noexcept;
    /// The position after one that is not the end.
    Index indexAfter(const Index& position) const noexcept;
    /// The element or member at a position before the end; the null position gives ("", null).
    std::pair<std::string, JSON> operator[](const Index& position) const;

    /// `for (const auto& [key, value] : json)`; the keys of an array are "0", "1", …
    /// The contents are those at the start of the loop, whatever it does to the value.
    const_iterator begin() const;
    std::default_sentinel_t end() const noexcept { return {}; }
    std::size_t count() const noexcept;
    std::size_t size() const noexcept { return count(); }
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
    std::string debugDescription() const { return description(); }

    // Merging: members of dictionaries are merged deeply, arrays are joined, anything else is
    // replaced by the other's.

    /// @throws NSError `ErrorWrongType` when the two types differ; the value stays as it was.
    void merge(const JSON& other) &;
    JSON merged(const JSON& other) const;

    /// A copy that shares no memory with the document that the value came from. Worth its time
    /// where a small part outlives a large document.
    JSON detached() const;

    // Comparing. Values of different types are neither equal nor in any order, nor is anything to
    // `unknown`. Truth values, arrays, dictionaries and nulls are equal or in no order.

    friend INKORA_EXPORT bool operator==(const JSON& left, const JSON& right);
    friend INKORA_EXPORT bool operator<(const JSON& left, const JSON& right);
    friend INKORA_EXPORT bool operator<=(const JSON& left, const JSON& right);
    friend bool operator>(const JSON& left, const JSON& right) { return right < left; }
    friend bool operator>=(const JSON& left, const JSON& right) { return right <= left; }

    /// Equal values have equal hashes.
    std::size_t hash() const;

    /// Writes `description()`.
    friend INKORA_EXPORT std::ostream& operator<<(std::ostream& stream, const JSON& json);

protected:
    /// One step of a path, as long as the expression lives that it stands in.
    struct Step {
        enum class Kind : std::uint8_t { index, key, path };
        Kind kind;
        std::int64_t index = 0;
        std::string_view key;
        const JSONPath* path = nullptr;
    };

private:
    friend class JSONPlace;
    friend class JSONMemberIterator;

    /// What only few values have, kept as an object in place of the value: why a subscript gave a
    /// null, and the array that the value was last.
    struct Aside;

    /// What the value is.
    const Any& contents() const noexcept {
        return value_.slot().tag() == AnySlot::object ? contentsOfObject() : value_;
    }
    const Any& contentsOfObject() const noexcept;
    const Aside* aside() const noexcept;
    /// Takes out what stands aside for as long as the contents change.
    Any takeFormerArray();
    void putFormerArray(Any formerArray);

    /// A step as the one or the other of two types.
    template <JSONSubscriptType T>
    static auto simple(const T& step) noexcept {
        if constexpr (Integer<T>) {
            return JSONKey::clamped(step);
        } else {
            return std::string_view(step);
        }
    }
    static Step stepOf(std::int64_t index) noexcept {
        return {Step::Kind::index, index, {}, nullptr};
    }
    static Step stepOf(std::string_view key) noexcept { return {Step::Kind::key, 0, key, nullptr}; }
    static Step stepFrom(const JSONKey& key) noexcept {
        if (const auto index = key.index()) return stepOf(*index);
        return stepOf(std::string_view(*key.key()));
    }

    /// What the container holds at the step; null if it does not, or is no such container.
    static const Any* element(const Any& container, std::int64_t position) noexcept {
        const AnySlot& slot = container.slot();
        if (slot.tag() != AnySlot::array) return nullptr;
        const auto index = static_cast<std::uint64_t>(position);  // huge when negative
        if (index >= slot.header().count) return nullptr;
        return reinterpret_cast<const Any*>(slot.pointer()) + index;
    }
    static const Any* element(const Any& container, std::string_view key) noexcept;
    static const Any* element(const Any& container, const Step& step) noexcept {
        return step.kind == Step::Kind::key ? element(container, step.key)
                                            : element(container, step.index);
    }
    /// The same as a `JSON` shows it, which `converted` keeps alive if it is not in the container.
    static const Any* element(const Any& container, const Step& step, JSON& converted);

    /// Whether a `JSON` made of what was found in a container holds just that. What is not counted
    /// there comes from a text, and therefore does.
    static bool isPlain(const Any* found) noexcept {
        if (!found) return false;
        const AnySlot& slot = found->slot();
        if (slot.tag() < AnySlot::array) return true;
        return slot.isContainer() && (!slot.isCounted() || !slot.startsWithObject());
    }
    struct Plain {};
    // Copied where it is to be, without a detour. NOLINTNEXTLINE(modernize-pass-by-value)
    JSON(Plain, const Any& value) noexcept : value_(value) {}
    JSON(Plain, Any&& container, const Any& part) noexcept : value_(std::move(container), part) {}

    /// What a step gives where it finds nothing, or something that has to be converted.
    JSON unusual(const Any* found, const Step& step) const;
    JSON missing(const Step& step) const;
    JSON atPath(const JSONPath& path) const;

    void write(std::span<const Step> steps, Any object);

    static JSON fromAny(Any value);
    static JSON fromElements(const std::vector<JSON>& elements);

    /// What a C++ value becomes: containers of `JSON`, at any depth, become arrays and
    /// dictionaries of what their values hold.
    template <class T>
    static JSON made(T&& value) {
        using Value = std::remove_cvref_t<T>;
        if constexpr (std::is_arithmetic_v<Value> ||
                      std::convertible_to<const Value&, std::string_view>) {
            JSON result;
            result.value_ = Any(std::forward<T>(value));
            return result;
        } else if constexpr (isPlatformValue<Value> || !isJSONValue<Value>) {
            return fromAny(Any(std::forward<T>(value)));
        } else if constexpr (std::same_as<Value, Data>) {
            return JSON(value, JSONSerialization::ReadingOptions::allowFragments);
        } else if constexpr (std::same_as<Value, std::vector<JSON>>) {
            return fromElements(value);
        } else if constexpr (requires { value.has_value(); }) {
            return value ? JSON(*std::forward<T>(value)) : JSON();
        } else if constexpr (requires { typename Value::mapped_type; }) {
            Dictionary members;
            members.reserve(value.size());
            for (const auto& [key, member] : value) members.set(key, JSON(member).object());
            return fromAny(std::move(members));
        } else {
            std::vector<JSON> elements(value.begin(), value.end());
            return fromElements(elements);
        }
    }

    Any value_;  // absent means null
};

static_assert(sizeof(JSON) == sizeof(Any));  // so that elements can be shown where they are

/// What a subscript gives on a `JSON` that may change: the value, and within the same expression
/// the place that it came from. Assigning to it there writes to that place; kept in a variable it
/// is a value of its own like any other.
///
///     json["pens"][0]["name"] = "desk";   // writes to json
///     auto pen = json["pens"][0];         // a copy
class INKORA_EXPORT JSONPlace final : public JSON {
public:
    JSONPlace(const JSONPlace&) = delete;  // the place does not outlive its expression
    ~JSONPlace() = default;

    // What is written is gone from here, so nothing is returned; JSON minds assigning to itself.
    // NOLINTBEGIN(misc-unconventional-assign-operator, bugprone-unhandled-self-assignment)
    void operator=(JSON value) && { write(std::move(value)); }
    void operator=(const JSONPlace& other) && { write(static_cast<const JSON&>(other)); }

    JSONPlace& operator=(JSON value) & {
        JSON::operator=(std::move(value));
        return *this;
    }
    JSONPlace& operator=(const JSONPlace& other) & {
        JSON::operator=(static_cast<const JSON&>(other));
        return *this;
    }
    // NOLINTEND(misc-unconventional-assign-operator, bugprone-unhandled-self-assignment)

    using JSON::operator[];
    template <JSONSubscriptType NextStep>
    JSONPlace operator[](const NextStep& step) && {
        return JSONPlace(std::move(*this), element(contents(), simple(step)), stepOf(simple(step)));
    }

    void setObject(Any object) && {
        JSON value = static_cast<const JSON&>(*this);
        value.setObject(std::move(object));
        write(std::move(value));
    }
    using JSON::setObject;

    /// Merges into the place. See `JSON::merge`.
    void merge(const JSON& other) && {
        JSON value = static_cast<const JSON&>(*this);
        value.merge(other);
        write(std::move(value));
    }
    using JSON::merge;

private:
    friend class JSON;
    /// @param found what is at the step; or null
    JSONPlace(JSON& root, const Any* found, const Step& step)
        : JSON(isPlain(found) ? JSON(Plain(), *found) : root.unusual(found, step)),
          root_(&root),
          step_(step) {}
    JSONPlace(JSONPlace&& parent, const Any* found, const Step& step)
        : JSON(isPlain(found) ? JSON(Plain(), std::move(parent.value_), *found)
                              : parent.unusual(found, step)),
          root_(parent.root_),
          parent_(&parent),
          step_(step) {}
    JSONPlace(JSON& root, const JSONPath& path)
        : JSON(root.atPath(path)), root_(&root), step_{Step::Kind::path, 0, {}, &path} {}

    void write(JSON value);

    JSON* root_;
    JSONPlace* parent_ = nullptr;
    Step step_;
};

template <JSONSubscriptType StepType>
JSONPlace JSON::operator[](const StepType& step) & {
    return JSONPlace(*this, element(contents(), simple(step)), stepOf(simple(step)));
}

/// The key of an element or member that iteration shows: of an array the position in decimal.
/// It is, and what it gives as a `std::string_view`, valid until the iterator moves on; as a
/// `std::string` it is yours.
class INKORA_EXPORT JSONMemberKey {
public:
    std::string_view view() const noexcept { return text_ ? text_->text() : positionText(); }
    std::size_t size() const noexcept { return view().size(); }

    operator std::string_view() const noexcept { return view(); }
    operator std::string() const { return std::string(view()); }
    friend bool operator==(const JSONMemberKey& key, std::string_view text) noexcept {
        return key.view() == text;
    }
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
    std::string key;
    JSON value;
};

/// An element or member as iteration shows it: where it is, until the iterator moves on. Copies of
/// its value live on their own.
struct JSONMemberReference {
    JSONMemberKey key;
    const JSON& value;

    operator JSONMember() const { return {key, value}; }
};

/// Goes through the contents that a value has when the iterator is made. An iterator of a value
/// that another iterator shows lives no longer than that one.
class INKORA_EXPORT JSONMemberIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = JSONMember;
    using difference_type = std::ptrdiff_t;
    using reference = JSONMemberReference;
    struct pointer {
        const JSONMemberReference* operator->() const noexcept { return &member; }
        JSONMemberReference member;
    };

    JSONMemberIterator() = default;

    JSONMemberReference operator*() const {
        const Any& value = next_[hasKeys_ ? 1 : 0];
        const JSON& shown =
            JSON::isPlain(&value) ? reinterpret_cast<const JSON&>(value) : converted(value);
        return {JSONMemberKey(hasKeys_ ? &next_->slot() : nullptr, position_), shown};
    }
    pointer operator->() const { return {**this}; }
    JSONMemberIterator& operator++() noexcept {
        --remaining_;
        ++position_;
        next_ += hasKeys_ ? 2 : 1;
        return *this;
    }
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
    friend bool operator==(const JSONMemberIterator& iterator, std::default_sentinel_t) noexcept {
        return iterator.remaining_ == 0;
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
        next_ = reinterpret_cast<const Any*>(slot.pointer());
        remaining_ = slot.header().count;
        hasKeys_ = slot.tag() == AnySlot::dictionary;
    }

    /// What is shown of something that has to be converted.
    const JSON& converted(const Any& value) const;

    Any container_;
    const Any* next_ = nullptr;
    std::size_t remaining_ = 0;
    std::int64_t position_ = 0;
    bool hasKeys_ = false;
    mutable JSON converted_;
};

inline JSON::const_iterator JSON::begin() const {
    return JSONMemberIterator(contents());
}

inline std::size_t JSON::count() const noexcept {
    const AnySlot& slot = contents().slot();
    return slot.isContainer() ? slot.header().count : 0;
}

inline Type JSON::type() const noexcept {
    static constexpr std::array types{
        Type::null,    Type::null,   Type::bool_,  Type::number,     Type::number, Type::number,
        Type::number,  Type::number, Type::number, Type::number,     Type::string, Type::string,
        Type::unknown, Type::number, Type::array,  Type::dictionary, Type::unknown};
    static_assert(types.size() == AnySlot::object + 1);
    return types[contents().slot().tag()];
}

inline std::string_view JSON::stringView() const& noexcept {
    const AnySlot& slot = contents().slot();
    return slot.isText() ? slot.text() : std::string_view();
}

inline std::int64_t JSON::intValue() const {
    const AnySlot& slot = value_.slot();
    return slot.isInteger() ? slot.integer() : numberValue().integerValue();
}

inline double JSON::doubleValue() const {
    const AnySlot& slot = value_.slot();
    if (slot.tag() == AnySlot::float64) return slot.real();
    return slot.isInteger() ? static_cast<double>(slot.integer()) : numberValue().doubleValue();
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
