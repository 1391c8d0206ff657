#include "platform/foundation/json/JSONWriter.h"

#include "platform/foundation/numbers/NumberText.h"
#include "platform/foundation/text/Bytes16.h"
#include "platform/foundation/text/Characters.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <span>

namespace InkoraKit {

namespace {

/// Takes the digits at the start off the text, and leading zeros off the digits.
std::string_view takeNumber(std::string_view& text) {
    const auto end = std::find_if_not(text.begin(), text.end(), isDigit);
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

/// By character: how it is escaped, and in the last byte the length of that.
constexpr auto escapes = [] {
    constexpr std::string_view hexDigits = "0123456789abcdef";
    constexpr std::string_view characters = "\"\\/\b\f\n\r\t";
    constexpr std::string_view letters = "\"\\/bfnrt";
    std::array<std::array<char, 8>, 128> table{};
    for (std::size_t i = 0; i < 0x20; ++i)
        table[i] = {'\\', 'u', '0', '0', hexDigits[i >> 4], hexDigits[i & 0xF], 0, 6};
    for (std::size_t i = 0; i < letters.size(); ++i)
        table[static_cast<unsigned char>(characters[i])] = {'\\', letters[i], 0, 0, 0, 0, 0, 2};
    return table;
}();

inline char* writeLiteral(std::string_view word, char* to) {
    std::memcpy(to, word.data(), word.size());
    return to + word.size();
}

inline char* writeEscaped(char character, char* to) {
    const auto& escape = escapes[static_cast<unsigned char>(character)];
    std::memcpy(to, escape.data(), escape.size());
    return to + escape.back();
}

/// Without setting what is new, where the library can do that.
void resizeUninitialised(std::string& text, std::size_t size) {
#if defined(__cpp_lib_string_resize_and_overwrite)
    text.resize_and_overwrite(size, [](const char*, std::size_t room) { return room; });
#else
    text.resize(size);
#endif
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

/// Of what is no JSON.
char* JSONWriter::failAt(const AnySlot& value) {
    return fail("Invalid type in JSON write (" + Storage::asAny(value).description() + ")");
}

bool JSONWriter::write(const Any& value, std::string& result) {
    const AnySlot& root = Storage::slot(value);
    if (!root.isContainer() && !has(JSONSerialization::WritingOptions::allowFragments)) {
        fail("Invalid top-level type in JSON write");
        return false;
    }
    result_ = &result;
    root_ = &root;
    const char* const end = has(JSONSerialization::WritingOptions::prettyPrinted)
                                ? writeDocument<true>(root, begin_)
                                : writeDocument<false>(root, begin_);
    if (!end) return false;
    const auto size = static_cast<std::size_t>(end - begin_);
    if (begin_ == buffer_.data()) {
        result.assign(begin_, size);
    } else {
        result.resize(size);
    }
    return true;
}

/// Goes on where there is more room. What has been written is copied, which is why there is much.
char* JSONWriter::grow(char* to) {
    const auto written = static_cast<std::size_t>(to - begin_);
    std::size_t size = 4 * std::min(written, result_->max_size() / 4);
    // What is nested deeply is little but indentation, and so much of it that counting takes less
    // time than having copied or asked for too much.
    constexpr std::ptrdiff_t sample = 4096;
    if (has(JSONSerialization::WritingOptions::prettyPrinted) &&
        std::count(to - sample, to, ' ') > sample / 8 * 7)
        size = std::max(2 * written, expectedSize(*root_));
    resizeUninitialised(*result_, size);
    if (begin_ == buffer_.data()) std::memcpy(result_->data(), begin_, written);
    begin_ = result_->data();
    end_ = begin_ + size;
    return begin_ + written;
}

template <bool isPretty>
char* JSONWriter::writeDocument(const AnySlot& root, char* to) {
    const AnySlot* value = &root;
    Frame frame{};  // around the root, where nothing follows
    std::size_t depth = 0;
    for (;;) {
        bool isFirst = value->isContainer();
        if (isFirst) {
            if (frame.remaining >= 2)  // its sibling's header is asked for ahead of time
                __builtin_prefetch(frame.next[frame.remaining & 1].pointer());
            frames_[depth++] = frame;
            frame = begun(*value);
            *to++ = frame.hasKeys() ? '{' : '[';
        } else {
            to = writeLeaf(*value, to);
            if (!to) return nullptr;
        }
        to = ensure(to, mostAtOnce);
        while (frame.remaining < 2) {
            if (depth == 0) return to;
            if constexpr (isPretty) {
                if (isFirst) *to++ = '\n';  // an empty one has a line of its own
                to = breakLine(to, depth - 1);
            }
            *to++ = frame.hasKeys() ? '}' : ']';
            frame = frames_[--depth];
            isFirst = false;
            if constexpr (isPretty) to = ensure(to, mostAtOnce);
        }
        frame.remaining -= 2;
        *to = ',';
        to += isFirst ? 0 : 1;
        if constexpr (isPretty) to = breakLine(to, depth);
        value = frame.next++;
        if (frame.hasKeys()) {
            ++frame.next;
            if (has(JSONSerialization::WritingOptions::sortedKeys)) value = nextSorted();
            if (!value->isText()) return failAt(*value);
            to = writeText(*value++, to);
            if constexpr (isPretty) {
                to = writeLiteral(" : ", to);
            } else {
                *to++ = ':';
            }
        }
        if (depth == mostNested) return fail("Too many nested arrays or dictionaries");
    }
}

[[gnu::always_inline]] inline JSONWriter::Frame JSONWriter::begun(const AnySlot& container) {
    const bool hasKeys = container.tag() == AnySlot::dictionary;
    if (hasKeys && has(JSONSerialization::WritingOptions::sortedKeys)) sortMembers(container);
    return {reinterpret_cast<AnySlot*>(container.pointer()),
            std::uint64_t{container.header().count} << 1 | std::uint64_t{hasKeys}};
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

/// At least how long a pretty text will be, but for escapes and long numbers.
std::size_t JSONWriter::expectedSize(const AnySlot& root) {
    std::size_t size = mostAtOnce;
    std::vector<std::pair<const AnySlot*, std::size_t>> pending{{&root, 1}};  // with their depths
    while (!pending.empty()) {
        const auto [container, depth] = pending.back();
        pending.pop_back();
        if (depth > mostNested) break;
        const std::size_t count = container->header().count;
        size += 2 + (count + 1) * (2 + 2 * depth);
        const std::size_t slots = container->tag() == AnySlot::dictionary ? 2 * count : count;
        const auto* const first = reinterpret_cast<const AnySlot*>(container->pointer());
        for (const AnySlot& slot : std::span(first, slots)) {
            if (slot.isContainer()) {
                pending.emplace_back(&slot, depth + 1);
            } else {
                size += slot.isText() ? slot.text().size() + 5 : 8;
            }
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
    static_assert(mostAfterText >= 16 + longestRealText && longestRealText >= longestIntegerText);
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
            return failAt(leaf);
    }
}

/// A number of a kind that is rare, or whose text is long.
char* JSONWriter::writeNumber(const AnySlot& slot, char* to) {
    const NSNumber number = Storage::number(Storage::asAny(slot));
    if (!std::isfinite(number.doubleValue()))
        return fail("Invalid number value (NaN) in JSON write");
    const std::string text = number.stringValue();  // of a decimal at most 170 characters
    to = ensure(to, text.size());
    return std::copy(text.begin(), text.end(), to);
}

/// Needs and leaves room for `mostAfterText`, as all that ends in it does.
[[gnu::always_inline]] inline char* JSONWriter::writeText(const AnySlot& slot, char* to) {
    if (slot.tag() != AnySlot::shortText) return writeAnyText(slot, to);
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
    *to++ = '"';
    for (;;) {
        to = ensure(to, mostAfterText + 7 * step);  // of six characters each
        const Bytes16 bytes = Bytes16::load(from);
        bytes.store(to);
        std::uint32_t specials = specialsOf(bytes);
        if (rest < step) specials &= (1u << rest) - 1;
        std::size_t done = 0;
        for (; specials != 0; specials &= specials - 1) {
            const auto plain = static_cast<std::size_t>(std::countr_zero(specials));
            to = writeEscaped(from[plain], to + plain - done);
            done = plain + 1;
            Bytes16::load(from + done).store(to);
        }
        if (rest <= step) {
            to += rest - done;
            break;
        }
        to += step - done;
        from += step;
        rest -= step;
    }
    *to++ = '"';
    return to;
}

}  // namespace InkoraKit
