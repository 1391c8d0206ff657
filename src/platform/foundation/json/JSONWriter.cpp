#include "platform/foundation/json/JSONWriter.h"

#include "platform/foundation/numbers/NumberText.h"
#include "platform/foundation/text/Bytes16.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace InkoraKit {

namespace {

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

inline char* writeLiteral(std::string_view word, char* to) {
    std::memcpy(to, word.data(), word.size());
    return to + word.size();
}

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
    if (!root.isContainer() && !has(JSONSerialization::WritingOptions::allowFragments)) {
        fail("Invalid top-level type in JSON write");
        return false;
    }
    result_ = &result;
    root_ = &root;
    char* const end = has(JSONSerialization::WritingOptions::prettyPrinted)
                          ? writeDocument<true>(root, buffer_.data())
                          : writeDocument<false>(root, buffer_.data());
    if (end) result.append(buffer_.data(), static_cast<std::size_t>(end - buffer_.data()));
    return end != nullptr;
}

char* JSONWriter::flush(char* to) {
    // A result that grows again and again is copied as often. Where indentation makes the most of
    // it, it takes less time to count first.
    constexpr std::size_t large = std::size_t{128} * 1024;
    if (!isReserved_ && result_->size() > large &&
        has(JSONSerialization::WritingOptions::prettyPrinted)) {
        result_->reserve(expectedSize(*root_));
        isReserved_ = true;
    }
    result_->append(buffer_.data(), static_cast<std::size_t>(to - buffer_.data()));
    return buffer_.data();
}

template <bool isPretty>
char* JSONWriter::writeDocument(const AnySlot& root, char* to) {
    if (!root.isContainer()) return writeLeaf(root, to);
    Frame frame = begun(root);
    *to++ = frame.hasKeys ? '{' : '[';
    bool isFirst = true;
    for (;;) {
        to = ensure(to, mostAtOnce);
        if (frame.remaining == 0) {
            if constexpr (isPretty) {
                if (isFirst) *to++ = '\n';  // an empty one has a line of its own
                to = breakLine(to, frames_.size());
            }
            *to++ = frame.hasKeys ? '}' : ']';
            if (frames_.empty()) return to;
            frame = frames_.back();
            frames_.pop_back();
            isFirst = false;
            continue;
        }
        --frame.remaining;
        *to = ',';
        to += isFirst ? 0 : 1;
        isFirst = false;
        if constexpr (isPretty) to = breakLine(to, frames_.size() + 1);
        const AnySlot* value = frame.next++;
        if (frame.hasKeys) {
            ++frame.next;
            if (frame.isSorted) value = nextSorted();
            if (!value->isText()) return writeLeaf(*value, to);  // which finds it at fault
            to = writeText(*value++, to);
            if constexpr (isPretty) {
                to = writeLiteral(" : ", to);
            } else {
                *to++ = ':';
            }
        }
        if (frames_.size() + 1 == mostNested) return fail("Too many nested arrays or dictionaries");
        if (value->isContainer()) {
            frames_.push_back(frame);
            frame = begun(*value);
            *to++ = frame.hasKeys ? '{' : '[';
            isFirst = true;
            continue;
        }
        to = writeLeaf(*value, to);
        if (!to) return nullptr;
    }
}

[[gnu::always_inline]] inline JSONWriter::Frame JSONWriter::begun(const AnySlot& container) {
    const bool hasKeys = container.tag() == AnySlot::dictionary;
    const bool isSorted = hasKeys && has(JSONSerialization::WritingOptions::sortedKeys);
    if (isSorted) sortMembers(container);
    return {reinterpret_cast<AnySlot*>(container.pointer()), container.header().count, hasKeys,
            isSorted};
}

void JSONWriter::sortMembers(const AnySlot& dictionary) {
    const auto* const members = reinterpret_cast<MemberSlots*>(dictionary.pointer());
    const std::size_t start = sorted_.size();
    for (std::uint32_t i = dictionary.header().count; i-- > 0;) sorted_.push_back(members + i);
    std::sort(sorted_.begin() + static_cast<std::ptrdiff_t>(start), sorted_.end(),
              [](const MemberSlots* l, const MemberSlots* r) { return isBefore(r, l); });
}

const AnySlot* JSONWriter::nextSorted() {
    const MemberSlots* const member = sorted_.back();
    sorted_.pop_back();
    return &member->key;
}

/// About how long a pretty text will be. Escapes make it longer, short numbers shorter.
std::size_t JSONWriter::expectedSize(const AnySlot& root) {
    if (!root.isContainer()) return 0;
    const auto sizeOfLeaf = [](const AnySlot& leaf) -> std::size_t {
        if (leaf.isText()) return leaf.text().size() + 2;
        if (leaf.isInteger()) {
            const auto magnitude = static_cast<std::uint64_t>(std::abs(leaf.integer() | 1));
            return static_cast<std::size_t>(std::bit_width(magnitude)) * 3 / 10 + 2;
        }
        return leaf.tag() >= AnySlot::uint64 ? 20 : 5;
    };
    std::size_t size = 0;
    std::vector<std::pair<const AnySlot*, std::size_t>> pending{{&root, 1}};  // with their depths
    while (!pending.empty()) {
        const auto [container, depth] = pending.back();
        pending.pop_back();
        const bool hasKeys = container->tag() == AnySlot::dictionary;
        const auto* next = reinterpret_cast<const AnySlot*>(container->pointer());
        const std::size_t count = container->header().count;
        const std::size_t around = 2 + 2 * depth + (hasKeys ? 3 : 0);
        size += 2 + (count + 1) * around;
        if (depth > mostNested) break;
        for (std::size_t i = 0; i < count; ++i) {
            if (hasKeys) size += sizeOfLeaf(*next++);
            if (next->isContainer()) {
                pending.emplace_back(next, depth + 1);
            } else {
                size += sizeOfLeaf(*next);
            }
            ++next;
        }
    }
    return size;
}

[[gnu::always_inline]] inline char* JSONWriter::breakLine(char* to, std::size_t depth) {
    *to++ = '\n';
    const std::size_t indentation = 2 * depth;
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
            return writeLiteral("null", to);
        case AnySlot::boolean:
            return leaf.truth() ? writeLiteral("true", to) : writeLiteral("false", to);
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

/// Afterwards there is room for another two steps.
[[gnu::always_inline]] inline char* JSONWriter::writeText(const AnySlot& slot, char* to) {
    if (slot.tag() != AnySlot::shortText) return writeAnyText(slot, to);
    to = ensure(to, 64);
    const std::uint32_t size = slot.shortSize();
    const Bytes16 bytes = Bytes16::load(&slot);
    if ((specialsOf(bytes) & ((1u << size) - 1)) != 0) return writeAnyText(slot, to);
    *to = '"';
    bytes.store(to + 1);
    to[size + 1] = '"';
    return to + size + 2;
}

/// The characters that have to be escaped.
[[gnu::always_inline]] inline std::uint32_t JSONWriter::specialsOf(Bytes16 bytes) const {
    return bytes.equalTo('"') | bytes.equalTo('\\') | bytes.atMost('\x1f') |
           (bytes.equalTo('/') & slashes_);
}

char* JSONWriter::writeAnyText(const AnySlot& slot, char* to) {
    constexpr std::size_t step = 16;
    // Long texts are followed by enough memory to be looked at in whole steps, and a short one is
    // given it.
    std::array<char, 2 * step> copy{};
    const char* from = copy.data();
    std::size_t rest = slot.text().size();
    if (slot.tag() == AnySlot::shortText) {
        Bytes16::load(&slot).store(copy.data());
    } else {
        from = slot.text().data();
    }
    to = ensure(to, 8 * step);
    *to++ = '"';
    for (;;) {
        const Bytes16 bytes = Bytes16::load(from);
        bytes.store(to);
        std::uint32_t specials = specialsOf(bytes);
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
