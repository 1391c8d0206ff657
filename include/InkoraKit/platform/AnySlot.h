#pragma once

#include <InkoraKit/Export.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace InkoraKit {

class Owner;

/// What precedes everything that a slot points to. Eight bytes on every machine, so that what
/// follows is aligned.
struct OwnerLink {
    alignas(8) Owner* owner;
};

/// What precedes the elements of an array or the members of a dictionary, wherever they live.
struct NodeHeader {
    std::uint32_t count;
    std::uint32_t capacity;
    OwnerLink link;
};

/// The sixteen bytes that an `Any` consists of, and of which arrays and dictionaries are made.
/// An implementation detail of `Any`; hosts have no use for it.
///
///     byte  0       7 8      11 12   13  14   15
///          | payload           | unused     |tag|   number, truth value; null and absent are all 0
///          | text, ended by zeros      |size|tag|   text of up to 14 bytes
///          | pointer  | size   | unused     |tag|   longer text
///          | pointer  | unused              |tag|   decimal, array, dictionary, object
///
/// What a pointer leads to is preceded by an `OwnerLink` to its `Owner`, which counts its users.
/// A slot within an array or dictionary need not be one of them, where the container keeps what it
/// leads to alive by other means.
///
/// The tag has five bits. Above them are the flags: that the slot is counted as a user; that it is
/// foreign, which an object and a malformed text are, and a container that may hold one, however
/// deep; that it is a container that may have absent parts. What a reader makes has neither of the
/// latter two.
///
/// Two words and nothing else, so that compilers keep a slot in registers.
struct alignas(8) AnySlot {
    enum Tag : std::uint8_t {
        absent,
        null,
        boolean,  // from here on in the order of NSNumber's kinds
        int8,
        int16,
        int32,
        int64,
        uint64,
        float32,
        float64,
        shortText,
        longText,  // from here on with a pointer
        malformedText,
        decimal,
        object,
        dictionary,
        array  // a bit of its own: 16
    };

    static constexpr std::size_t longestShortText = 14;

    constexpr AnySlot() noexcept = default;
    constexpr AnySlot(Tag tag, std::uint64_t payload) noexcept
        : first_(payload), second_(tag * tagUnit) {}
    AnySlot(Tag tag, const void* pointer, std::uint32_t size = 0) noexcept
        : first_(reinterpret_cast<std::uintptr_t>(pointer)),
          second_(tag * tagUnit | std::uint64_t{size} << sizeShift) {}

    /// A view of a text in the form that slots have, to compare it with them. It owns nothing.
    /// Inlined, since it is to stay in registers: two words that have just been stored one by one
    /// are slow to load together.
    [[gnu::always_inline]] static AnySlot view(std::string_view text) noexcept {
        const std::size_t size = text.size();
        if (size > longestShortText)
            return {longText, text.data(), static_cast<std::uint32_t>(size)};
        AnySlot slot;
        slot.second_ = std::uint64_t{size} << shortSizeShift | shortText * tagUnit;
        if constexpr (isLittleEndian) {
            // From loads that overlap, each into a register: bytes that both have are the same.
            const auto wordOf = [&](auto word, std::size_t offset) {
                std::memcpy(&word, text.data() + offset, sizeof word);
                return std::uint64_t{word};
            };
            if (size >= 8) {
                slot.first_ = wordOf(std::uint64_t{}, 0);
                if (size > 8) slot.second_ |= wordOf(std::uint64_t{}, size - 8) >> 8 * (16 - size);
            } else if (size >= 4) {
                slot.first_ = wordOf(std::uint32_t{}, 0) | wordOf(std::uint32_t{}, size - 4)
                                                               << 8 * (size - 4);
            } else if (size > 0) {
                slot.first_ = wordOf(std::uint8_t{}, 0) |
                              wordOf(std::uint8_t{}, size / 2) << 8 * (size / 2) |
                              wordOf(std::uint8_t{}, size - 1) << 8 * (size - 1);
            }
        } else if (size > 0) {
            std::memcpy(static_cast<void*>(&slot), text.data(), size);
        }
        return slot;
    }

    Tag tag() const noexcept { return static_cast<Tag>(second_ >> tagShift & 0x1F); }
    bool isShared() const noexcept { return tag() >= longText; }

    bool isCounted() const noexcept { return (second_ & countedFlag) != 0; }
    void setCounted() noexcept { second_ |= countedFlag; }
    void clearCounted() noexcept { second_ &= ~countedFlag; }

    /// Whether it is an object or a malformed text, or may hold one.
    bool isForeign() const noexcept { return (second_ & foreignFlag) != 0; }
    void setForeign() noexcept { second_ |= foreignFlag; }
    /// Whether it is not foreign and has no absent parts.
    bool isPlain() const noexcept { return (second_ & (foreignFlag | gapsFlag)) == 0; }
    /// Of a container: takes note of what it holds from now on.
    void note(const AnySlot& part) noexcept {
        second_ |= (part.second_ & foreignFlag) | (part.tag() == absent ? gapsFlag : 0);
    }
    /// Of a container: that it holds what the other one does.
    void copyNotes(const AnySlot& other) noexcept {
        constexpr std::uint64_t notes = foreignFlag | gapsFlag;
        second_ = (second_ & ~notes) | (other.second_ & notes);
    }

    bool isNumber() const noexcept {
        return (tag() >= boolean && tag() <= float64) || tag() == decimal;
    }
    /// Text that is well-formed UTF-8.
    bool isText() const noexcept { return tag() == shortText || tag() == longText; }

    bool isContainer() const noexcept { return tag() >= dictionary; }
    bool isArray() const noexcept { return (second_ >> tagShift & std::uint64_t{array}) != 0; }
    /// An integer of 64 bits, or of fewer.
    bool isInteger() const noexcept { return tag() >= int8 && tag() <= int64; }

    std::uint64_t payload() const noexcept { return first_; }
    /// What follows the payload: with it, all of a short text.
    std::uint64_t rest() const noexcept { return second_; }
    std::int64_t integer() const noexcept { return static_cast<std::int64_t>(first_); }
    double real() const noexcept {
        double value;
        std::memcpy(&value, &first_, sizeof value);
        return value;
    }
    /// The payload of a number with a fraction.
    static std::uint64_t bitsOf(double value) noexcept {
        std::uint64_t bits;
        std::memcpy(&bits, &value, sizeof bits);
        return bits;
    }
    bool truth() const noexcept { return first_ != 0; }

    std::byte* pointer() const noexcept {
        // NOLINTNEXTLINE(performance-no-int-to-ptr)
        return reinterpret_cast<std::byte*>(static_cast<std::uintptr_t>(first_));
    }
    void setPointer(const void* pointer) noexcept {
        first_ = reinterpret_cast<std::uintptr_t>(pointer);
    }
    /// Of an array or dictionary.
    NodeHeader& header() const noexcept { return reinterpret_cast<NodeHeader*>(pointer())[-1]; }
    /// Of what a pointer leads to.
    Owner* owner() const noexcept { return reinterpret_cast<OwnerLink*>(pointer())[-1].owner; }
    /// The elements of an array; keys and values of a dictionary in turns.
    const AnySlot* parts() const noexcept { return reinterpret_cast<const AnySlot*>(pointer()); }
    /// What an array holds at a position; null if it holds nothing there.
    /// @param position huge where it was negative
    const AnySlot* element(std::uint64_t position) const noexcept {
        return position < header().count ? parts() + position : nullptr;
    }
    /// What a dictionary holds under a key, a view; null if it holds nothing there.
    INKORA_EXPORT static const AnySlot* member(AnySlot dictionary, AnySlot key) noexcept;

    /// Of a text that is not short.
    std::uint32_t size() const noexcept { return static_cast<std::uint32_t>(second_ >> sizeShift); }
    /// Of a short text.
    std::uint32_t shortSize() const noexcept {
        return static_cast<std::uint32_t>(second_ >> shortSizeShift & 0xFF);
    }
    /// Of a short text it lives in this slot.
    std::string_view text() const noexcept {
        return {tag() == shortText ? reinterpret_cast<const char*>(this)
                                   : reinterpret_cast<const char*>(pointer()),
                textSize()};
    }
    std::size_t textSize() const noexcept {
        const bool isShort = tag() == shortText;
        if constexpr (!isLittleEndian) return isShort ? shortSize() : size();
        // Which of the two it is, no processor can foresee: so both take the same way.
        const int below = 8 + (shortSizeShift - sizeShift) * static_cast<int>(isShort);
        return static_cast<std::size_t>(second_ << 8 >> below);
    }

private:
    static constexpr bool isLittleEndian = std::endian::native == std::endian::little;
    static constexpr int tagShift = isLittleEndian ? 56 : 0;
    static constexpr int shortSizeShift = isLittleEndian ? 48 : 8;
    static constexpr int sizeShift = isLittleEndian ? 0 : 32;
    static constexpr std::uint64_t tagUnit = std::uint64_t{1} << tagShift;
    static constexpr std::uint64_t countedFlag = 0x80 * tagUnit;
    static constexpr std::uint64_t foreignFlag = 0x40 * tagUnit;
    static constexpr std::uint64_t gapsFlag = 0x20 * tagUnit;

    std::uint64_t first_ = 0;
    std::uint64_t second_ = 0;
};

static_assert(sizeof(AnySlot) == 16 && AnySlot::array == 16);

}  // namespace InkoraKit
