#include "platform/foundation/values/DictionaryIndex.h"

#include "platform/foundation/numbers/Words.h"
#include "platform/foundation/text/Bytes16.h"

#include <array>
#include <cstring>

namespace InkoraKit::DictionaryIndex {

namespace {

constexpr std::size_t roundedUp(std::size_t size) {
    return (size + 15) & ~std::size_t{15};
}

constexpr std::size_t tableSize(std::size_t capacity) {
    return std::bit_ceil(capacity + capacity / 2);
}

std::uint64_t wordAt(const void* address) noexcept {
    std::uint64_t word;
    std::memcpy(&word, address, sizeof word);
    return word;
}

/// Every bit of the result depends on every bit of both: keys such as long runs of digits differ in
/// a few low bits only.
std::uint64_t mixed(std::uint64_t left, std::uint64_t right) noexcept {
    const TwoWords product = multiplied(left, right);
    return product.high ^ product.low;
}

/// Where the program was loaded differs from run to run, so that nobody can prepare keys that all
/// hash alike.
std::uint64_t seed() noexcept {
    static const char place = 0;
    return reinterpret_cast<std::uintptr_t>(&place) * 0x9e3779b97f4a7c15;
}

std::uint64_t hashOf(const AnySlot& key) noexcept {
    constexpr std::uint64_t first = 0xd6e8feb86659fd93;
    constexpr std::uint64_t second = 0xa0761d6478bd642f;
    if (key.tag() == AnySlot::shortText)
        return mixed(key.payload() ^ first ^ seed(), key.rest() ^ second);
    if (key.tag() == AnySlot::malformedText) return hashOf(AnySlot::view(key.text()));

    const std::byte* text = key.pointer();
    const std::byte* const end = text + key.size();  // longer than 14 bytes
    std::uint64_t hash = seed() ^ key.size();
    for (; end - text > 16; text += 16)
        hash = mixed(wordAt(text) ^ hash ^ first, wordAt(text + 8) ^ second);
    const std::byte* const tail = key.size() < 16 ? text : end - 16;
    return mixed(wordAt(tail) ^ hash ^ first, wordAt(end - 8) ^ second);
}

std::uint8_t fingerprintOf(std::uint64_t hash) noexcept {
    return static_cast<std::uint8_t>(hash >> 56);
}

std::uint8_t* fingerprints(const MemberSlots* members, std::uint32_t capacity) noexcept {
    return reinterpret_cast<std::uint8_t*>(const_cast<MemberSlots*>(members + capacity));
}

/// Positions plus one; zero where there is none.
std::uint32_t* table(const MemberSlots* members, std::uint32_t capacity) noexcept {
    return reinterpret_cast<std::uint32_t*>(fingerprints(members, capacity) + roundedUp(capacity));
}

std::optional<std::uint32_t> findByFingerprint(const MemberSlots* members, const NodeHeader& header,
                                               const AnySlot& key) noexcept {
    const std::uint8_t* const prints = fingerprints(members, header.capacity);
    const auto wanted = static_cast<char>(fingerprintOf(hashOf(key)));
    for (std::uint32_t start = 0; start < header.count; start += 16) {
        for (std::uint32_t hits = Bytes16::load(prints + start).equalTo(wanted); hits != 0;
             hits &= hits - 1) {
            const auto position = start + static_cast<std::uint32_t>(std::countr_zero(hits));
            if (position < header.count && areEqual(members[position].key, key)) return position;
        }
    }
    return std::nullopt;
}

std::optional<std::uint32_t> findInTable(const MemberSlots* members, const NodeHeader& header,
                                         const AnySlot& key) noexcept {
    const std::uint8_t* const prints = fingerprints(members, header.capacity);
    const std::uint32_t* const positions = table(members, header.capacity);
    const std::size_t last = tableSize(header.capacity) - 1;
    const std::uint64_t hash = hashOf(key);
    for (auto place = static_cast<std::size_t>(hash) & last; positions[place] != 0;
         place = (place + 1) & last) {
        const std::uint32_t position = positions[place] - 1;
        if (prints[position] == fingerprintOf(hash) && areEqual(members[position].key, key))
            return position;
    }
    return std::nullopt;
}

}  // namespace

std::size_t size(std::uint32_t capacity) noexcept {
    std::size_t bytes = std::size_t{capacity} * sizeof(MemberSlots);
    if (capacity > mostWithoutFingerprints) bytes += roundedUp(capacity);
    if (capacity > mostWithoutTable) bytes += tableSize(capacity) * 4;
    return bytes;
}

std::optional<std::uint32_t> findInIndex(const MemberSlots* members, const NodeHeader& header,
                                         const AnySlot& key) noexcept {
    return header.capacity <= mostWithoutTable ? findByFingerprint(members, header, key)
                                               : findInTable(members, header, key);
}

void insert(MemberSlots* members, const NodeHeader& header, std::uint32_t position) noexcept {
    if (header.capacity <= mostWithoutFingerprints) return;
    const std::uint64_t hash = hashOf(members[position].key);
    fingerprints(members, header.capacity)[position] = fingerprintOf(hash);
    if (header.capacity <= mostWithoutTable) return;
    std::uint32_t* const positions = table(members, header.capacity);
    const std::size_t last = tableSize(header.capacity) - 1;
    auto place = static_cast<std::size_t>(hash) & last;
    while (positions[place] != 0) place = (place + 1) & last;
    positions[place] = position + 1;
}

void build(MemberSlots* members, const NodeHeader& header) noexcept {
    if (header.capacity <= mostWithoutFingerprints) return;
    std::uint8_t* const prints = fingerprints(members, header.capacity);
    std::memset(prints + header.count, 0, roundedUp(header.capacity) - header.count);
    if (header.capacity > mostWithoutTable)
        std::memset(table(members, header.capacity), 0, tableSize(header.capacity) * 4);
    for (std::uint32_t position = 0; position < header.count; ++position)
        insert(members, header, position);
}

bool hasRepeatedKey(const MemberSlots* members, const NodeHeader& header) noexcept {
    const std::uint8_t* const prints = fingerprints(members, header.capacity);
    std::array<std::uint64_t, 4> seen{};
    for (std::uint32_t position = 0; position < header.count; ++position) {
        // Only a key whose fingerprint has been seen can have been seen itself.
        std::uint64_t& word = seen[prints[position] >> 6];
        const std::uint64_t bit = std::uint64_t{1} << (prints[position] & 63);
        if ((word & bit) != 0 && find(members, header, members[position].key) != position)
            return true;
        word |= bit;
    }
    return false;
}

}  // namespace InkoraKit::DictionaryIndex
