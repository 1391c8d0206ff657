#include "JSONWriter.h"

#include "Bytes16.h"
#include "NumberText.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace InkoraKit {

namespace {

bool isContainer(const AnySlot& slot) {
    return slot.tag() == AnySlot::array || slot.tag() == AnySlot::dictionary;
}

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

char lowered(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character | 0x20) : character;
}

/// Takes the digits at the start off the text, and leading zeros off the digits.
std::string_view takeNumber(std::string_view& text) {
    const auto end = std::ranges::find_if_not(text, isDigit);
    std::string_view digits = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(digits.size());
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
    return digits;
}

/// Letters of either case alike, runs of digits as the numbers that they are; bytes decide what
/// that leaves undecided.
bool isBefore(const MemberSlots* left, const MemberSlots* right) {
    const std::string_view leftKey = left->key.text();
    const std::string_view rightKey = right->key.text();
    std::string_view l = leftKey;
    std::string_view r = rightKey;
    while (!l.empty() && !r.empty()) {
        if (isDigit(l.front()) && isDigit(r.front())) {
            const std::string_view leftNumber = takeNumber(l);
            const std::string_view rightNumber = takeNumber(r);
            if (leftNumber.size() != rightNumber.size())
                return leftNumber.size() < rightNumber.size();
            if (leftNumber != rightNumber) return leftNumber < rightNumber;
            continue;
        }
        const auto leftByte = static_cast<unsigned char>(lowered(l.front()));
        const auto rightByte = static_cast<unsigned char>(lowered(r.front()));
        if (leftByte != rightByte) return leftByte < rightByte;
        l.remove_prefix(1);
        r.remove_prefix(1);
    }
    if (l.empty() != r.empty()) return l.empty();
    return leftKey < rightKey;
}

/// By character: the letter after the backslash, "u" where digits follow; zero where there is none.
constexpr auto lettersOfEscapes = [] {
    constexpr std::string_view characters = "\"\\/\b\f\n\r\t";
    constexpr std::string_view letters = "\"\\/bfnrt";
    std::array<char, 256> table{};
    for (std::size_t i = 0; i < 0x20; ++i) table[i] = 'u';
    for (std::size_t i = 0; i < letters.size(); ++i)
        table[static_cast<unsigned char>(characters[i])] = letters[i];
    return table;
}();

char* writeEscaped(char character, char* to) {
    constexpr std::string_view hexDigits = "0123456789abcdef";
    const char letter = lettersOfEscapes[static_cast<unsigned char>(character)];
    *to++ = '\\';
    *to++ = letter;
    if (letter != 'u') return to;
    *to++ = '0';
    *to++ = '0';
    *to++ = hexDigits[static_cast<std::size_t>(character >> 4)];
    *to++ = hexDigits[static_cast<std::size_t>(character & 0xF)];
    return to;
}

}  // namespace

JSONWriter::JSONWriter(JSONSerialization::WritingOptions options)
    : options_(options),
      slashes_(has(JSONSerialization::WritingOptions::withoutEscapingSlashes) ? 0 : ~0u) {}

bool JSONWriter::has(JSONSerialization::WritingOptions option) const noexcept {
    return (static_cast<std::uint32_t>(options_) & static_cast<std::uint32_t>(option)) != 0;
}

char* JSONWriter::fail(std::string_view reason) {
    fault_ = reason;
    return nullptr;
}

bool JSONWriter::write(const Any& value, std::string& result) {
    const AnySlot& root = Storage::slot(value);
    if (!isContainer(root) && !has(JSONSerialization::WritingOptions::allowFragments)) {
        fail("Invalid top-level type in JSON write");
        return false;
    }
    result_ = &result;
    char* const end = has(JSONSerialization::WritingOptions::prettyPrinted)
                          ? writeDocument<true>(root, buffer_.data())
                          : writeDocument<false>(root, buffer_.data());
    if (end) flush(end);
    return end != nullptr;
}

char* JSONWriter::flush(char* to) {
    result_->append(buffer_.data(), static_cast<std::size_t>(to - buffer_.data()));
    return buffer_.data();
}

template <bool isPretty>
char* JSONWriter::writeDocument(const AnySlot& root, char* to) {
    const AnySlot* value = &root;
    for (;;) {
        if (frames_.size() == mostNested) return fail("Too many nested arrays or dictionaries");
        to = isContainer(*value) ? open(*value, to) : writeLeaf(*value, to);
        if (!to) return nullptr;
        while (!frames_.empty() && frames_.back().remaining == 0) to = close<isPretty>(to);
        if (frames_.empty()) return to;
        to = lead<isPretty>(to, value);
    }
}

[[gnu::always_inline]] inline char* JSONWriter::open(const AnySlot& container, char* to) {
    const std::uint32_t count = Storage::header(container).count;
    const bool hasKeys = container.tag() == AnySlot::dictionary;
    const bool isSorted = hasKeys && has(JSONSerialization::WritingOptions::sortedKeys);
    frames_.push_back({reinterpret_cast<AnySlot*>(container.pointer()), count, hasKeys, isSorted});
    if (isSorted) sortMembers(container);
    isFirst_ = true;
    to = ensure(to, 1);
    *to++ = hasKeys ? '{' : '[';
    return to;
}

void JSONWriter::sortMembers(const AnySlot& dictionary) {
    const auto* const members = reinterpret_cast<MemberSlots*>(dictionary.pointer());
    const std::size_t start = sorted_.size();
    for (std::uint32_t i = Storage::header(dictionary).count; i-- > 0;)
        sorted_.push_back(members + i);
    std::sort(sorted_.begin() + static_cast<std::ptrdiff_t>(start), sorted_.end(),
              [](const MemberSlots* l, const MemberSlots* r) { return isBefore(r, l); });
}

template <bool isPretty>
[[gnu::always_inline]] inline char* JSONWriter::close(char* to) {
    const char closing = frames_.back().hasKeys ? '}' : ']';
    frames_.pop_back();
    to = ensure(to, mostAtOnce);
    if constexpr (isPretty) {
        if (isFirst_) *to++ = '\n';  // an empty one has a line of its own
        to = breakLine(to);
    }
    *to++ = closing;
    isFirst_ = false;
    return to;
}

/// Writes what leads to the next value of the innermost array or dictionary: comma and key.
template <bool isPretty>
[[gnu::always_inline]] inline char* JSONWriter::lead(char* to, const AnySlot*& value) {
    Frame& frame = frames_.back();
    to = ensure(to, mostAtOnce);
    *to = ',';
    to += isFirst_ ? 0 : 1;
    isFirst_ = false;
    if constexpr (isPretty) to = breakLine(to);
    --frame.remaining;
    if (!frame.hasKeys) {
        value = frame.next++;
        return to;
    }
    const AnySlot* member = frame.next;
    if (frame.isSorted) {
        member = &sorted_.back()->key;
        sorted_.pop_back();
    } else {
        frame.next += 2;
    }
    value = member;
    if (!member->isText()) return to;  // which is then found at fault
    ++value;
    to = writeText(*member, to);
    if constexpr (isPretty) {
        std::memcpy(to, " : ", 3);
        return to + 3;
    } else {
        *to++ = ':';
        return to;
    }
}

[[gnu::always_inline]] inline char* JSONWriter::breakLine(char* to) const {
    *to++ = '\n';
    const std::size_t indentation = 2 * frames_.size();
    constexpr std::size_t step = 16;
    const Bytes16 blanks = Bytes16::of(0x2020202020202020, 0x2020202020202020);
    for (std::size_t written = 0; written < indentation; written += step)
        blanks.store(to + written);
    return to + indentation;
}

[[gnu::always_inline]] inline char* JSONWriter::writeLeaf(const AnySlot& leaf, char* to) {
    if (leaf.isText()) return writeText(leaf, to);
    constexpr std::size_t longest = 32;
    static_assert(longest >= longestRealText && longest >= longestIntegerText);
    to = ensure(to, longest);
    switch (leaf.tag()) {
        case AnySlot::absent:
        case AnySlot::null:
            std::memcpy(to, "null", 4);
            return to + 4;
        case AnySlot::boolean:
            std::memcpy(to, leaf.truth() ? "true " : "false", 5);
            return to + (leaf.truth() ? 4 : 5);
        case AnySlot::int8:
        case AnySlot::int16:
        case AnySlot::int32:
        case AnySlot::int64:
            return writeInteger(to, leaf.integer());
        case AnySlot::uint64:
            return writeInteger(to, leaf.payload());
        case AnySlot::float64:
            if (!std::isfinite(leaf.real()))
                return fail("Invalid number value (NaN) in JSON write");
            return writeShortest(to, leaf.real(), largestPlainDouble);
        case AnySlot::float32:
        case AnySlot::decimal:
            return writeNumber(leaf, to);
        default:
            return fail("Invalid type in JSON write (" + Storage::asAny(leaf).description() + ")");
    }
}

/// A number of a kind that is rare, or whose text is long.
char* JSONWriter::writeNumber(const AnySlot& slot, char* to) {
    const NSNumber number = Storage::number(Storage::asAny(slot));
    if (!std::isfinite(number.doubleValue()))
        return fail("Invalid number value (NaN) in JSON write");
    const std::string text = number.stringValue();  // of a decimal at most 170 characters
    to = ensure(to, text.size());
    return std::ranges::copy(text, to).out;
}

/// There is room for four steps afterwards, too.
[[gnu::always_inline]] inline char* JSONWriter::writeText(const AnySlot& slot, char* to) {
    constexpr std::size_t step = 16;
    const bool isShort = slot.tag() == AnySlot::shortText;
    const char* from = reinterpret_cast<const char*>(isShort ? slot.bytes.data() : nullptr);
    std::size_t rest = slot.bytes[14];
    if (!isShort) {
        from = reinterpret_cast<const char*>(slot.pointer());
        rest = slot.size();
    }
    to = ensure(to, 8 * step);
    *to++ = '"';
    // Every text is followed by enough memory to be looked at in whole steps.
    for (;;) {
        const Bytes16 bytes = Bytes16::load(from);
        bytes.store(to);
        std::uint32_t specials = bytes.equalTo('"') | bytes.equalTo('\\') | bytes.atMost('\x1f') |
                                 (bytes.equalTo('/') & slashes_);
        if (rest < step) specials &= (1u << rest) - 1;
        if (specials != 0) {
            const int plain = std::countr_zero(specials);
            to = writeEscaped(from[plain], to + plain);
            from += plain + 1;
            rest -= static_cast<std::size_t>(plain) + 1;
        } else if (rest <= step) {
            to += rest;
            break;
        } else {
            to += step;
            from += step;
            rest -= step;
        }
        to = ensure(to, 8 * step);
    }
    *to++ = '"';
    return to;
}

}  // namespace InkoraKit
