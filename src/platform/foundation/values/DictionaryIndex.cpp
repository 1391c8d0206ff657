#include "platform/foundation/values/DictionaryIndex.h"

#include "platform/foundation/numbers/Words.h"

#include <bit>
#include <cstring>

namespace InkoraKit::DictionaryIndex {

namespace {

constexpr std::size_t tableSize(std::size_t capacity) {
    return std::bit_ceil(capacity + capacity / 4);
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

constexpr std::uint64_t first = 0xd6e8feb86659fd93;
constexpr std::uint64_t second = 0xa0761d6478bd642f;

/// Of a text that is not short, or malformed.
[[gnu::noinline]] std::uint64_t hashOfText(const AnySlot& key) noexcept;

std::uint64_t hashOf(const AnySlot& key) noexcept {
    if (key.tag() != AnySlot::shortText) return hashOfText(key);
    return mixed(key.payload() ^ first ^ seed(), key.rest() ^ second);
}

std::uint64_t hashOfText(const AnySlot& key) noexcept {
    if (key.size() <= AnySlot::longestShortText) return hashOf(AnySlot::view(key.text()));
    const std::byte* text = key.pointer();
    const std::byte* const end = text + key.size();
    std::uint64_t hash = seed() ^ key.size();
    for (; end - text > 16; text += 16)
        hash = mixed(wordAt(text) ^ hash ^ first, wordAt(text + 8) ^ second);
    const std::byte* const tail = key.size() < 16 ? text : end - 16;
    return mixed(wordAt(tail) ^ hash ^ first, wordAt(end - 8) ^ second);
}

constexpr std::size_t largestTableOfBytes = 64;

/// Finds the place of a key in a table of hashes, or the empty one where it belongs. An entry is
/// the member's position plus one, for which the table's size tells how many bits it takes, and in
/// the bits above those some of the key's hash. It is zero where there is none.
template <class Entry>
class Table {
public:
    Table(const MemberSlots* members, std::uint32_t capacity) noexcept
        : members_(members),
          entries_(reinterpret_cast<Entry*>(const_cast<MemberSlots*>(members + capacity))),
          last_(tableSize(capacity) - 1) {}

    Entry& entryOf(const AnySlot& key, std::uint64_t hash) const noexcept {
        for (auto place = static_cast<std::size_t>(hash >> 32);; ++place) {
            Entry& entry = entries_[place & last_];
            if (entry == 0) return entry;
            const bool mayBe = ((entry ^ static_cast<Entry>(hash)) & ~last_) == 0;
            if (mayBe && areEqual(memberOf(entry).key, key)) return entry;
        }
    }
    const MemberSlots& memberOf(Entry entry) const noexcept {
        return members_[(entry & last_) - 1];
    }

    const MemberSlots* find(const AnySlot& key) const noexcept {
        const Entry entry = entryOf(key, hashOf(key));
        return entry == 0 ? nullptr : &memberOf(entry);
    }

    /// @return whether no member before has the same key
    bool insert(std::uint32_t position) const noexcept {
        const AnySlot& key = members_[position].key;
        const std::uint64_t hash = hashOf(key);
        Entry& entry = entryOf(key, hash);
        if (entry != 0) return false;
        entry = static_cast<Entry>((hash & ~std::uint64_t{last_}) | (position + 1));
        return true;
    }

    bool build(std::uint32_t count) const noexcept {
        std::memset(entries_, 0, (last_ + 1) * sizeof(Entry));
        bool areDifferent = true;
        for (std::uint32_t position = 0; position < count; ++position)
            areDifferent &= insert(position);
        return areDifferent;
    }

private:
    const MemberSlots* members_;
    Entry* entries_;
    std::size_t last_;  // place; its bits are those of a position
};

/// Does the work with the table of the members.
template <class Work>
auto withTable(const MemberSlots* members, std::uint32_t capacity, const Work& work) noexcept {
    return tableSize(capacity) <= largestTableOfBytes
               ? work(Table<std::uint8_t>(members, capacity))
               : work(Table<std::uint32_t>(members, capacity));
}

}  // namespace

std::size_t size(std::uint32_t capacity) noexcept {
    std::size_t bytes = std::size_t{capacity} * sizeof(MemberSlots);
    if (capacity <= mostWithoutTable) return bytes;
    const std::size_t entries = tableSize(capacity);
    return bytes + entries * (entries <= largestTableOfBytes ? 1 : 4);
}

bool areEqualTexts(const AnySlot& left, AnySlot right) noexcept {
    if (left.tag() != right.tag() && left.tag() != AnySlot::malformedText) return false;
    return left.text() == right.text();
}

const MemberSlots* findInTable(const MemberSlots* members, const NodeHeader& header,
                               const AnySlot& key) noexcept {
    return withTable(members, header.capacity, [&](auto table) { return table.find(key); });
}

void insert(MemberSlots* members, const NodeHeader& header, std::uint32_t position) noexcept {
    if (header.capacity <= mostWithoutTable) return;
    withTable(members, header.capacity, [&](auto table) { return table.insert(position); });
}

bool build(MemberSlots* members, const NodeHeader& header) noexcept {
    if (header.capacity <= mostWithoutTable) return true;
    return withTable(members, header.capacity,
                     [&](auto table) { return table.build(header.count); });
}

}  // namespace InkoraKit::DictionaryIndex
