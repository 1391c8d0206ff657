#include "platform/foundation/json/JSONReader.h"

#include "platform/foundation/numbers/DecimalToDouble.h"
#include "platform/foundation/numbers/NumberText.h"
#include "platform/foundation/text/Bytes16.h"
#include "platform/foundation/text/Characters.h"
#include "platform/foundation/text/Utf8.h"
#include "platform/foundation/values/DictionaryIndex.h"
#include "platform/foundation/values/RegionText.h"
#include "platform/foundation/values/Storage.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <unordered_map>
#include <utility>

namespace InkoraKit {

namespace {

constexpr const char* endTooEarly = "Unexpected end of file during JSON parse.";
constexpr const char* tooDeep = "Too many nested arrays or dictionaries";

/// Fills a slot with one store, since it is soon read with one load: a processor makes a load wait
/// that spans several recent stores.
inline void put(AnySlot& slot, AnySlot value) {
    Bytes16::of(value.payload(), value.rest()).store(&slot);
}

inline void copy(AnySlot& slot, const AnySlot& original) {
    Bytes16::load(&original).store(&slot);
}

/// The last two bytes of a short text's slot, by size.
constexpr auto shortTextEnds = [] {
    std::array<std::array<std::uint8_t, 16>, AnySlot::longestShortText + 1> ends{};
    for (std::size_t size = 0; size < ends.size(); ++size) {
        ends[size][14] = static_cast<std::uint8_t>(size);
        ends[size][15] = AnySlot::shortText;
    }
    return ends;
}();

/// @param text what of it follows the first `size` bytes does not matter
inline void putShortText(AnySlot& slot, Bytes16 text, std::uint32_t size) {
    (text.first(size) | Bytes16::load(shortTextEnds[size].data())).store(&slot);
}

/// Where a text may not simply go on: quotes, backslashes and control characters.
inline std::uint32_t specialsOf(Bytes16 bytes) {
    return bytes.equalTo('"') | bytes.equalTo('\\') | bytes.atMost('\x1f');
}

inline std::uint64_t wordAt(const char* text) {
    std::uint64_t word;
    std::memcpy(&word, text, sizeof word);
    return word;
}

/// The number that eight digits make: neighbours are joined to pairs, these to fours, these to all.
/// The first digit is the lowest byte; zero bytes count as the digit 0.
constexpr std::uint64_t numberOfEightDigits(std::uint64_t word) {
    word = (word & 0x0F0F0F0F0F0F0F0F) * (256 * 10 + 1) >> 8;
    word = (word & 0x00FF00FF00FF00FF) * (65536 * 100 + 1) >> 16;
    return (word & 0x0000FFFF0000FFFF) * ((std::uint64_t{10000} << 32) + 1) >> 32;
}

/// Reads all digits that follow, and appends them to the number, which wraps around where it has no
/// room for them. How many there are decides about as little as possible: a processor cannot
/// foresee it.
/// @return null where they go on at `limit`
[[gnu::always_inline]] inline const char* readDigits(const char* text, const char* limit,
                                                     std::uint64_t& number) {
    if constexpr (std::endian::native == std::endian::little) {
        static constexpr std::array<std::uint64_t, 9> powersOfTen{
            1, 10, 100, 1'000, 10'000, 100'000, 1'000'000, 10'000'000, 100'000'000};
        const auto count = static_cast<unsigned>(std::countr_one(Bytes16::load(text).digits()));
        if (count == 0) return text;
        const std::uint64_t first = wordAt(text);
        if (count <= 8) {
            number = number * powersOfTen[count] + numberOfEightDigits(first << (64 - 8 * count));
            return text + count;
        }
        number = number * powersOfTen[8] + numberOfEightDigits(first);
        const std::uint64_t second = wordAt(text + 8) << (128 - 8 * count);
        number = number * powersOfTen[count - 8] + numberOfEightDigits(second);
        text += count;
        if (count < 16) return text;
    }
    for (; isDigit(*text); ++text) {
        if (text >= limit) return nullptr;
        number = number * 10 + static_cast<unsigned>(*text - '0');
    }
    return text;
}

/// What the letter after a backslash stands for, or zero.
constexpr auto meaningsOfEscapes = [] {
    constexpr std::string_view letters = "\"\\/bfnrt";
    constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
    std::array<char, 256> table{};
    for (std::size_t i = 0; i < letters.size(); ++i)
        table[static_cast<unsigned char>(letters[i])] = meanings[i];
    return table;
}();

/// What a hexadecimal digit is worth; 16 and more for other characters.
constexpr auto hexDigits = [] {
    std::array<std::uint8_t, 256> table{};
    table.fill(16);
    for (std::uint8_t i = 0; i < 16; ++i)
        for (const std::string_view digits : {"0123456789abcdef", "0123456789ABCDEF"})
            table[static_cast<unsigned char>(digits[i])] = i;
    return table;
}();

/// Whether any two of a few keys are the same. Most often some bits of each tell that none are.
bool haveRepeatedKey(const MemberSlots* members, std::size_t count) {
    std::uint64_t seen = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const AnySlot& key = members[i].key;
        std::uint64_t word = key.payload() ^ key.rest();
        if (key.tag() != AnySlot::shortText) std::memcpy(&word, key.pointer(), sizeof word);
        const std::uint64_t bit = std::uint64_t{1} << (word * 0x9e3779b97f4a7c15 >> 58);
        if ((seen & bit) != 0) {
            for (std::size_t j = 0; j < i; ++j)
                if (DictionaryIndex::areEqual(key, members[j].key)) return true;
        }
        seen |= bit;
    }
    return false;
}

/// Leaves each key once, at its first place, with its last value.
void removeRepeatedKeys(std::byte* node) {
    auto* const members = reinterpret_cast<MemberSlots*>(node);
    NodeHeader& header = reinterpret_cast<NodeHeader*>(node)[-1];
    std::unordered_map<std::string_view, std::uint32_t> places;
    std::uint32_t kept = 0;
    for (std::uint32_t i = 0; i < header.count; ++i) {
        const MemberSlots member = members[i];
        members[kept].key = member.key;  // whose text, if short, lives there
        const auto [place, isNew] = places.emplace(members[kept].key.text(), kept);
        members[place->second].value = member.value;
        if (isNew) ++kept;
    }
    header.count = kept;
    DictionaryIndex::build(members, header);
}

/// Whether that is how many members the dictionary has, and also how many it has room for: one that
/// had repeated keys has more, and its index is laid out for them.
bool isFull(const MemberSlots* members, std::size_t count) {
    const NodeHeader& header = reinterpret_cast<const NodeHeader*>(members)[-1];
    return header.count == count && header.capacity == count;
}

std::byte* newNode(std::byte* room, std::size_t count, Region* region) {
    const auto number = static_cast<std::uint32_t>(count);
    new (room) NodeHeader{number, number, {region}};
    return room + sizeof(NodeHeader);
}

/// Most arrays and dictionaries are small: a call would take longer than the copying.
inline void copySlots(std::byte* to, const AnySlot* from, std::size_t count) {
    constexpr std::size_t few = 16;
    if (count > few) {
        std::memcpy(to, from, count * sizeof(AnySlot));
        return;
    }
    for (std::size_t i = 0; i < count; ++i) Bytes16::load(from + i).store(to + i * sizeof(AnySlot));
}

}  // namespace

JSONReader::~JSONReader() {
    if (region_) region_->destroy();
}

const char* JSONReader::fail(const char* reason, const char* place) {
    fault_ = {reason, offsetOf(place)};
    return nullptr;
}

const char* JSONReader::moveToEnd(const char* text) {
    const auto rest = static_cast<std::size_t>(end_ - text);
    const std::size_t offset = offsetOf(text);
    char* copy = smallEnd_.data();
    if (rest + padding > smallEnd_.size()) {
        largeEnd_ = std::unique_ptr<char[]>(new char[rest + padding]);  // not cleared
        copy = largeEnd_.get();
    }
    if (rest > 0) std::memcpy(copy, text, rest);
    std::memset(copy + rest, 0, padding);
    base_ = reinterpret_cast<std::uintptr_t>(copy) - offset;
    checked_ = copy + std::max<std::ptrdiff_t>(checked_ - text, 0);
    end_ = copy + rest;
    limit_ = end_ + padding;  // which nothing reaches: the first zero stops everything
    return copy;
}

/// The first place that is not white space. Where there is some, it is most often a single blank,
/// or a line break and an indentation.
[[gnu::always_inline]] inline const char* JSONReader::skipBlanks(const char* text) {
    const auto isPlain = [](char character) { return static_cast<unsigned char>(character) > ' '; };
    if (isPlain(*text)) return text;
    if (*text == ' ' && isPlain(text[1])) return text + 1;
    if (*text != '\n') return skipManyBlanks(text);
    std::uint32_t blanks = Bytes16::load(++text).equalTo(' ');
    if (blanks == 0xFFFF) blanks = Bytes16::load(text += 16).equalTo(' ');
    text += std::countr_one(blanks);
    return isPlain(*text) ? text : skipManyBlanks(text);
}

/// The same for white space of any kind.
const char* JSONReader::skipManyBlanks(const char* text) {
    for (;;) {
        if (text >= limit_) text = moveToEnd(text);
        const Bytes16 bytes = Bytes16::load(text);
        const std::uint32_t blanks =
            bytes.equalTo(' ') | bytes.equalTo('\n') | bytes.equalTo('\r') | bytes.equalTo('\t');
        if (blanks != 0xFFFF) return text + std::countr_one(blanks);
        text += 16;
    }
}

/// What is wrong at a place may be that the text has ended there. That is put down to the array or
/// dictionary that is open.
const char* JSONReader::failAtEndOr(const char* reason, const char* place, const Frame& frame) {
    fault_ = {reason, offsetOf(place)};
    if (place == end_)
        fault_ = {endTooEarly, frame.place == Place::document ? offsetOf(place) : frame.opening};
    return nullptr;
}

JSONReader::JSONReader(std::string_view text) noexcept
    : text_(text),
      end_(text.data() + text.size()),
      limit_(end_ - std::min(text.size(), endSize)),
      checked_(text.data()),
      base_(reinterpret_cast<std::uintptr_t>(text.data())) {}

bool JSONReader::read(bool allowFragments, Any& result) {
    if (text_.empty()) {
        fail("Unable to parse empty data.", text_.data());
        return false;
    }
    if (text_.size() > UINT32_MAX) {  // which texts, arrays and dictionaries count with
        fail("Text is too long", text_.data());
        return false;
    }
    const bool isSmall = text_.size() + padding <= smallEnd_.size();
    const char* const start = skipBlanks(isSmall ? moveToEnd(text_.data()) : text_.data());
    if (start == end_) {
        fail("JSON text did not have any content", start);
        return false;
    }
    if (!allowFragments && *start != '[' && *start != '{') {
        fail("JSON text did not start with array or object and option to allow fragments not set.",
             start);
        return false;
    }
    // A short text gets all that it may need; a long one soon tells how much that is.
    constexpr std::size_t shortText = 1024;
    region_ = Region::create(text_.size() < shortText ? 2 * text_.size() + 64
                                                      : shortText + text_.size() / 16);
    const char* const after = readDocument(start);
    if (!after) return false;
    const char* const rest = skipBlanks(after);
    if (rest != end_) {
        fail("Garbage at end", rest);
        return false;
    }
    AnySlot root = *stack_.begin();
    if (root.isShared()) {
        root.setCounted();  // the one user that the region was made with
        region_ = nullptr;
    }
    result = Any();
    Storage::slot(result) = root;
    return true;
}

const char* JSONReader::readDocument(const char* text) {
    AnySlot* top = stack_.begin();
    Frame* frame = frames_.data();
    *frame = {Place::document, false, 0, top, nullptr, nullptr, nullptr};
    const AnySlot* expected = nullptr;  // what stood at the place of the value before; or null
    for (;;) {
        // A value begins here.
        if (!stack_.hasRoomForTwo(top)) [[unlikely]]  // for it, and for a key after it
            top = growStack(top, *frame);
        if (text >= limit_) [[unlikely]]
            text = moveToEnd(text);
        const char* after = nullptr;
        switch (*text) {
            case '"':
                after = readText(text + 1, *top++);
                break;
            case '[':
                if (frame == &frames_.back()) return fail(tooDeep, text);
                openArray(*++frame, text, top, expected);
                expected = nullptr;
                text = skipBlanks(text + 1);
                if (*text != ']') continue;
                top = closeArray(text, *frame--, top);
                after = text + 1;
                break;
            case '{':
                if (frame == &frames_.back()) return fail(tooDeep, text);
                openDictionary(*++frame, text, top, expected);
                text = skipBlanks(text + 1);
                if (*text != '}') {
                    text = readKey(text, *frame, *top++, expected);
                    if (!text) return nullptr;
                    continue;
                }
                top = closeDictionary(text, *frame--, top);
                after = text + 1;
                break;
            default:
                after = *text == '-' || isDigit(*text) ? readNumber(text, *top++)
                                                       : readWord(text, *frame, *top++);
        }
        if (!after) [[unlikely]] {
            if (isFaulty()) return nullptr;
            text = moveToEnd(text);
            --top;
            continue;
        }
        text = after;
        // A value has ended here, and perhaps what it stood in.
        for (;;) {
            if (frame->place == Place::array) {
                text = skipBlanks(text);
                if (*text == ',') {
                    text = skipBlanks(text + 1);
                    expected = nullptr;
                    break;
                }
                if (*text != ']')
                    return fail(text == end_ ? "Unexpected end of file" : "Badly formed array",
                                text);
                top = closeArray(text++, *frame--, top);
            } else {
                if (frame->place == Place::document) return text;
                text = skipBlanks(text);
                if (*text == ',') {
                    text = readKey(skipBlanks(text + 1), *frame, *top++, expected);
                    if (!text) return nullptr;
                    break;
                }
                if (*text != '}')
                    return fail(text == end_ ? "Unexpected end of file" : "Badly formed object",
                                text);
                top = closeDictionary(text++, *frame--, top);
            }
            if (text >= limit_) [[unlikely]]
                text = moveToEnd(text);
        }
    }
}

/// @return the top
AnySlot* JSONReader::growStack(AnySlot* top, const Frame& last) {
    const AnySlot* const before = stack_.begin();
    AnySlot* const grown = stack_.grow(top);
    for (Frame* frame = frames_.data(); frame <= &last; ++frame)
        frame->first = stack_.begin() + (frame->first - before);
    return grown;
}

[[gnu::always_inline]] inline void JSONReader::openArray(Frame& frame, const char* text,
                                                         AnySlot* top, const AnySlot* expected) {
    frame.place = Place::array;
    frame.opening = static_cast<std::uint32_t>(offsetOf(text));
    frame.first = top;
    frame.previous = nullptr;
    // Expect the first element to be like the one of the array that stood here before.
    if (!expected || expected->tag() != AnySlot::array || expected->header().count == 0) return;
    const auto* const first = reinterpret_cast<const AnySlot*>(expected->pointer());
    if (first->tag() == AnySlot::dictionary)
        frame.previous = reinterpret_cast<const MemberSlots*>(first->pointer());
}

[[gnu::always_inline]] inline void JSONReader::openDictionary(Frame& frame, const char* text,
                                                              AnySlot* top,
                                                              const AnySlot* expected) {
    const MemberSlots* hint = (&frame)[-1].previous;
    if (expected && expected->tag() == AnySlot::dictionary)
        hint = reinterpret_cast<const MemberSlots*>(expected->pointer());
    frame.place = Place::dictionary;
    frame.isAsHinted = hint != nullptr;
    frame.opening = static_cast<std::uint32_t>(offsetOf(text));
    frame.first = top;
    frame.previous = nullptr;
    frame.next = hint;
    frame.end = hint ? hint + reinterpret_cast<const NodeHeader*>(hint)[-1].count : nullptr;
}

/// How much is left to read, as a multiple of what has been read.
double JSONReader::toCome(const char* text) const noexcept {
    return static_cast<double>(end_ - text) / static_cast<double>(offsetOf(text) + 1);
}

[[gnu::always_inline]] inline std::byte* JSONReader::allocate(const char* text, std::size_t size) {
    if (!region_->hasRoom(size)) [[unlikely]]
        region_->addPiece(size, toCome(text));
    return region_->take(size);
}

[[gnu::always_inline]] inline AnySlot* JSONReader::closeArray(const char* text, const Frame& frame,
                                                              AnySlot* top) {
    AnySlot* const slots = frame.first;
    const auto count = static_cast<std::size_t>(top - slots);
    std::byte* const node =
        newNode(allocate(text, sizeof(NodeHeader) + count * sizeof(AnySlot)), count, region_);
    copySlots(node, slots, count);
    put(*slots, {AnySlot::array, node});
    return slots + 1;
}

[[gnu::always_inline]] inline AnySlot* JSONReader::closeDictionary(const char* text, Frame& frame,
                                                                   AnySlot* top) {
    AnySlot* const slots = frame.first;
    const std::size_t count = static_cast<std::size_t>(top - slots) / 2;
    const std::size_t memberSize = count * sizeof(MemberSlots);
    const bool hasTable = count > DictionaryIndex::mostWithoutTable;
    const std::size_t size =
        hasTable ? DictionaryIndex::size(static_cast<std::uint32_t>(count)) : memberSize;
    std::byte* const node = newNode(allocate(text, sizeof(NodeHeader) + size), count, region_);
    auto* const members = reinterpret_cast<MemberSlots*>(node);
    copySlots(node, slots, count * 2);

    bool isRepeating = false;
    if (!hasTable) {
        isRepeating = !frame.isAsHinted && count > 1 && haveRepeatedKey(members, count);
    } else if (frame.isAsHinted && isFull(frame.next - count, count)) {
        // The same keys in the same order have the same table.
        std::memcpy(node + memberSize, frame.next, size - memberSize);
    } else {
        const NodeHeader& header = reinterpret_cast<NodeHeader*>(node)[-1];
        isRepeating = !DictionaryIndex::build(members, header);
    }
    if (isRepeating) [[unlikely]]
        removeRepeatedKeys(node);
    put(*slots, {AnySlot::dictionary, node});
    (&frame)[-1].previous = members;
    return slots + 1;
}

/// @param text the quote before the text that is to be the key
[[gnu::always_inline]] inline bool JSONReader::isExpectedKey(const char* text,
                                                             const AnySlot& key) const {
    if (key.tag() == AnySlot::shortText) {
        const std::uint32_t size = key.shortSize();
        const std::uint32_t equal = Bytes16::load(text + 1).equalTo(Bytes16::load(&key));
        return static_cast<std::uint32_t>(std::countr_one(equal)) >= size && text[1 + size] == '"';
    }
    const std::uint32_t size = key.size();
    const auto most = limit_ - text - 2;  // as many can be looked at with both quotes
    if (most < static_cast<std::ptrdiff_t>(size) || text[1 + size] != '"') return false;
    // Two looks at sixteen bytes, which may overlap, are enough for nearly every key.
    const std::byte* const expected = key.pointer();
    if (size < 16 || size > 32) return std::memcmp(text + 1, expected, size) == 0;
    const auto isSame = [&](std::size_t offset) {
        return Bytes16::load(text + 1 + offset).equalTo(Bytes16::load(expected + offset)) == 0xFFFF;
    };
    return isSame(0) && isSame(size - 16);
}

/// @return the value after the key
[[gnu::always_inline]] inline const char* JSONReader::readKey(const char* text, Frame& frame,
                                                              AnySlot& key,
                                                              const AnySlot*& expected) {
    if (*text != '"') [[unlikely]]
        return failAtEndOr("No string key for value in object", text, frame);
    if (frame.next != frame.end && isExpectedKey(text, frame.next->key)) {
        const AnySlot& known = frame.next->key;
        copy(key, known);
        text += (known.tag() == AnySlot::shortText ? known.shortSize() : known.size()) + 2;
        expected = &frame.next++->value;
    } else {
        expected = nullptr;
        frame.isAsHinted = false;
        const char* after = readText(text + 1, key);
        if (!after && !isFaulty()) after = readText(moveToEnd(text) + 1, key);
        if (!after) return nullptr;
        text = after;
    }
    text = skipBlanks(text);
    if (*text != ':') return failAtEndOr("No value for key in object", text, frame);
    return skipBlanks(text + 1);
}

/// Checks a text together with what follows shortly, since a call for each would take longer.
bool JSONReader::isUtf8(const char* text, const char* end) {
    constexpr std::ptrdiff_t mostAhead = 512;
    checked_ = std::max(checked_, text);
    while (checked_ < end) {
        const auto size = static_cast<std::size_t>(std::min(end_ - checked_, mostAhead));
        const std::size_t wellFormed = wellFormedUtf8Length({checked_, size});
        if (wellFormed == 0) return false;
        checked_ += wellFormed;
    }
    return true;
}

/// @param text after the opening quote
[[gnu::always_inline]] inline const char* JSONReader::readText(const char* text, AnySlot& slot) {
    const Bytes16 bytes = Bytes16::load(text);
    const std::uint32_t specials = specialsOf(bytes);
    if (specials == 0) return readLongText(text, slot);
    const auto size = static_cast<std::uint32_t>(std::countr_zero(specials));
    const bool isPlain = (bytes.nonASCII() & ((1u << size) - 1)) == 0;
    if (text[size] != '"' || size > AnySlot::longestShortText || !isPlain)
        return readLongText(text, slot);
    putShortText(slot, bytes, size);
    return text + size + 1;
}

/// A text of any length, with escapes. It goes straight to where it stays.
const char* JSONReader::readLongText(const char* text, AnySlot& slot) {
    constexpr std::size_t step = 16;
    constexpr std::size_t mostAtOnce = 3 * step;
    RegionText result(*region_, mostAtOnce);
    char* to = result.start();
    if (!result.hasRoom(to)) [[unlikely]]
        to = result.grow(to, toCome(text));
    const char* from = text;
    std::uint32_t nonASCII = 0;
    for (;;) {
        const Bytes16 bytes = Bytes16::load(from);
        bytes.store(to);
        nonASCII |= bytes.nonASCII();
        const std::uint32_t specials = specialsOf(bytes);
        if (specials == 0) {
            from += step;
            to += step;
            if (from >= limit_) [[unlikely]]
                return nullptr;
            if (!result.hasRoom(to)) [[unlikely]]
                to = result.grow(to, toCome(from));
            continue;
        }
        const int plain = std::countr_zero(specials);
        from += plain;
        to += plain;
        if (*from == '"') break;
        if (*from != '\\')
            return from == end_ ? fail("Unterminated string", text - 1)
                                : fail("Unescaped control character", from);
        if (const char meaning = meaningsOfEscapes[static_cast<unsigned char>(from[1])]) {
            *to++ = meaning;
            from += 2;
        } else {
            char32_t character = 0;
            from = readUnicodeEscape(from, character);
            if (!from) return nullptr;
            to = writeUtf8(to, character);
        }
        if (from >= limit_) [[unlikely]]
            return nullptr;
        if (!result.hasRoom(to)) [[unlikely]]
            to = result.grow(to, toCome(from));
    }
    if (nonASCII != 0 && !isUtf8(text, from))
        return fail("Unable to convert data to string", checked_);
    const auto size = static_cast<std::size_t>(to - result.start());
    if (size <= AnySlot::longestShortText) {
        putShortText(slot, Bytes16::load(result.start()), static_cast<std::uint32_t>(size));
    } else {
        put(slot, {AnySlot::longText, result.keep(size), static_cast<std::uint32_t>(size)});
    }
    return from + 1;
}

/// Reads "\u" and four digits, twice for a character beyond the first 65536.
const char* JSONReader::readUnicodeEscape(const char* text, char32_t& character) {
    if (text[1] != 'u') return fail("Invalid escape sequence", text);
    constexpr std::uint32_t invalid = 0x10000;
    const auto unitAt = [](const char* digits) {
        std::uint32_t unit = 0;
        std::uint32_t largest = 0;
        for (int i = 0; i < 4; ++i) {
            const std::uint32_t digit = hexDigits[static_cast<unsigned char>(digits[i])];
            unit = unit << 4 | digit;
            largest |= digit;
        }
        return largest < 16 ? unit : invalid;
    };
    const auto invalidDigit = [this](const char* digits) {
        while (hexDigits[static_cast<unsigned char>(*digits)] < 16) ++digits;
        return fail("Invalid hex digit in unicode escape sequence", digits);
    };
    const std::uint32_t unit = unitAt(text + 2);
    if (unit == invalid) return invalidDigit(text + 2);
    if (unit < 0xD800 || unit > 0xDFFF) {
        character = unit;
        return text + 6;
    }
    constexpr const char* lone = "Lone surrogate in unicode escape sequence";
    if (unit >= 0xDC00 || text[6] != '\\' || text[7] != 'u') return fail(lone, text);
    const std::uint32_t low = unitAt(text + 8);
    if (low == invalid) return invalidDigit(text + 8);
    if (low < 0xDC00 || low > 0xDFFF) return fail(lone, text);
    character = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
    return text + 12;
}

[[gnu::always_inline]] inline const char* JSONReader::readNumber(const char* text, AnySlot& slot) {
    const char* const start = text;
    const bool isNegative = *text == '-';
    if (isNegative) ++text;
    const char* const first = text;
    std::uint64_t number = 0;
    text = readDigits(text, limit_, number);
    if (!text) [[unlikely]]
        return nullptr;
    auto digits = text - first;
    if (*first == '0') {
        if (digits > 1) return fail("Number with leading zero", first + 1);
        digits = 0;
    } else if (digits == 0) {
        return fail("Number with minus sign but no digits", start);
    }
    if (*text == '.' || *text == 'e' || *text == 'E')
        return readReal(start, text, number, digits, slot);
    constexpr std::uint64_t mostNegative = std::uint64_t{1} << 63;
    constexpr int mostDigits = 19;  // that never wrap around
    if (digits > mostDigits || number >= mostNegative) [[unlikely]]
        return readLongInteger(start, text, slot);
    put(slot, {AnySlot::int64, isNegative ? 0 - number : number});
    return text;
}

/// An integer of the numeral from `start` to `text`, which may not fit into 64 bits.
const char* JSONReader::readLongInteger(const char* start, const char* text, AnySlot& slot) {
    std::int64_t integer = 0;
    std::uint64_t natural = 0;
    if (std::from_chars(start, text, integer).ec == std::errc()) {
        put(slot, {AnySlot::int64, static_cast<std::uint64_t>(integer)});
    } else if (*start != '-' && std::from_chars(start, text, natural).ec == std::errc()) {
        put(slot, {AnySlot::uint64, natural});
    } else {
        return readReal(start, text, 0, text - start, slot);
    }
    return text;
}

/// @param text after the integer part
/// @param mantissa the integer part, wrapped around where it has more than 19 digits
/// @param digits   how many digits that has, none for 0
const char* JSONReader::readReal(const char* start, const char* text, std::uint64_t mantissa,
                                 std::int64_t digits, AnySlot& slot) {
    std::int64_t exponent = 0;
    if (*text == '.') {
        const char* const first = ++text;
        text = readDigits(text, limit_, mantissa);
        if (!text) [[unlikely]]
            return nullptr;
        if (text == first) return fail("Number with decimal point but no additional digits", start);
        digits += text - first;
        exponent = first - text;
    }
    if (*text == 'e' || *text == 'E') {
        ++text;
        const bool isNegative = *text == '-';
        if (isNegative || *text == '+') ++text;
        const char* const first = text;
        std::int64_t written = 0;
        constexpr std::int64_t farBeyond = 1'000'000'000'000;  // any range of exponents
        for (; isDigit(*text); ++text) {
            if (text >= limit_) return nullptr;
            if (written < farBeyond) written = written * 10 + (*text - '0');
        }
        if (text == first) return fail("Number with 'e' but no additional digits", start);
        exponent += isNegative ? -written : written;
    }

    constexpr std::int64_t mostDigitsOfDouble = 17;
    const std::string_view numeral(start, static_cast<std::size_t>(text - start));
    std::optional<double> value;
    if (digits > mostDigitsOfDouble) {
        if (putDecimal(numeral, slot)) return text;
    } else {
        value = nearestDouble(mantissa, exponent);
        if (value && *start == '-') value = -*value;
    }
    if (!value) value = realFromText(numeral);
    if (!std::isfinite(*value)) return fail("Number wound up as NaN", start);
    put(slot, {AnySlot::float64, AnySlot::bitsOf(*value)});
    return text;
}

/// @return whether a decimal can hold the numeral
bool JSONReader::putDecimal(std::string_view numeral, AnySlot& slot) {
    const NSDecimalNumber decimal(numeral);
    if (decimal.isNaN()) return false;
    std::byte* const room = allocate(numeral.data(), sizeof(OwnerLink) + sizeof decimal);
    auto* const link = new (room) OwnerLink{region_};
    std::memcpy(link + 1, &decimal, sizeof decimal);
    put(slot, {AnySlot::decimal, link + 1});
    return true;
}

[[gnu::always_inline]] inline const char* JSONReader::readWord(const char* text, const Frame& frame,
                                                               AnySlot& slot) {
    const auto reads = [&](const auto& word, AnySlot meaning) {
        if (std::memcmp(text, word, sizeof word - 1) != 0) return false;
        put(slot, meaning);
        text += sizeof word - 1;
        return true;
    };
    const bool isWord = reads("null", {AnySlot::null, std::uint64_t{0}}) ||
                        reads("true", {AnySlot::boolean, std::uint64_t{1}}) ||
                        reads("false", {AnySlot::boolean, std::uint64_t{0}});
    return isWord ? text : failAtWord(text, frame);
}

const char* JSONReader::failAtWord(const char* text, const Frame& frame) {
    const std::string_view rest(text, static_cast<std::size_t>(end_ - text));
    const std::pair<std::string_view, const char*> words[] = {
        {"true", "Something looked like a 'true' but wasn't"},
        {"false", "Something looked like a 'false' but wasn't"},
        {"null", "Something looked like a 'null' but wasn't"}};
    for (const auto& [word, reason] : words) {
        if (*text != word.front()) continue;
        const bool isCutShort = frame.place == Place::document && word.starts_with(rest);
        return fail(isCutShort ? endTooEarly : reason, text);
    }
    return failAtEndOr("Invalid value", text, frame);
}

}  // namespace InkoraKit
