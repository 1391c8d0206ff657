#pragma once

#include <InkoraKit/platform/Any.h>

#include "platform/foundation/values/Region.h"
#include "platform/foundation/values/SlotStack.h"
#include "platform/foundation/values/Storage.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace InkoraKit {

/// Reads one JSON text (RFC 8259, strictly) in one pass over its bytes. Values gather on a stack;
/// where an array or dictionary ends, its part of the stack moves into the document's region. How
/// deep the text is nested costs no depth of calls.
///
/// Records in real documents have the same keys in the same order, time and again. So every
/// dictionary is read with another one in mind, the hint: the one that stood at the same place of
/// the record before. A key that is found to be the expected one needs no further look.
class JSONReader {
public:
    static constexpr std::size_t mostNested = 512;

    struct Fault {
        const char* reason = nullptr;
        std::size_t offset = 0;
    };

    /// @param text outlives the reader
    explicit JSONReader(std::string_view text) noexcept;
    ~JSONReader();
    JSONReader(const JSONReader&) = delete;
    JSONReader& operator=(const JSONReader&) = delete;

    /// @return whether the text was a JSON text; if not, `fault()` tells where it is not.
    bool read(bool allowFragments, Any& result);
    const Fault& fault() const noexcept { return fault_; }

private:
    /// What is being read: the document, or an array or dictionary in it.
    enum class Place : std::uint8_t { document, array, dictionary };

    struct Frame {
        Place place;
        bool isAsHinted;        // whether every key so far was one of the hint's, in its order
        std::uint32_t opening;  // its offset
        AnySlot* first;         // its first value or key on the stack
        const MemberSlots* previous;  // the dictionary last closed within this; or null
        const MemberSlots* next;      // the one of the hint that is expected next
        const MemberSlots* end;       // of the hint
    };

    /// Where looking at many bytes at a time would go beyond the text, a copy of its end takes
    /// over, which zeros follow.
    /// @return the same place in the copy
    const char* moveToEnd(const char* text);
    const char* skipBlanks(const char* text);
    const char* skipManyBlanks(const char* text);

    // These take the place in the text, and give back that after what they read. They give null
    // after a fault, and, without one, when what they read reaches into the end of the text: it is
    // then to be read again from the copy of that.
    const char* readDocument(const char* text);
    const char* readKey(const char* text, Frame& frame, AnySlot& key, const AnySlot*& expected);
    const char* readText(const char* text, AnySlot& slot);
    const char* readLongText(const char* text, AnySlot& slot);
    bool isUtf8(const char* text, const char* end);
    const char* readUnicodeEscape(const char* text, char32_t& character);
    const char* readNumber(const char* text, AnySlot& slot);
    const char* readLongInteger(const char* start, const char* text, AnySlot& slot);
    const char* readReal(const char* start, const char* text, std::uint64_t mantissa,
                         std::int64_t digits, AnySlot& slot);
    const char* readWord(const char* text, const Frame& frame, AnySlot& slot);

    AnySlot* growStack(AnySlot* top, const Frame& last);
    void openArray(Frame& frame, const char* text, AnySlot* top, const AnySlot* expected);
    void openDictionary(Frame& frame, const char* text, AnySlot* top, const AnySlot* expected);
    AnySlot* closeArray(const char* text, const Frame& frame, AnySlot* top);
    AnySlot* closeDictionary(const char* text, Frame& frame, AnySlot* top);

    bool isExpectedKey(const char* text, const AnySlot& key) const;
    bool putDecimal(std::string_view numeral, AnySlot& slot);
    double toCome(const char* text) const noexcept;
    std::byte* allocate(const char* text, std::size_t size);

    std::size_t offsetOf(const char* place) const noexcept {
        return reinterpret_cast<std::uintptr_t>(place) - base_;
    }
    const char* failAtWord(const char* text, const Frame& frame);
    bool isFaulty() const noexcept { return fault_.reason != nullptr; }
    const char* fail(const char* reason, const char* place);
    const char* failAtEndOr(const char* reason, const char* place, const Frame& frame);

    static constexpr std::size_t endSize = 256;  // more than a value, and what leads to the next
    static constexpr std::size_t padding = 64;

    std::string_view text_;
    const char* end_;
    const char* limit_;    // where the end of the text begins; nowhere once the copy has taken over
    const char* checked_;  // where what is known to be well-formed UTF-8 ends
    std::uintptr_t base_;  // what an address is to be offset from
    Region* region_ = nullptr;
    SlotStack stack_;
    Fault fault_;
    std::unique_ptr<char[]> largeEnd_;
    std::array<char, 1024> smallEnd_;
    std::array<Frame, mostNested + 1> frames_;  // of which the first is the document's
};

}  // namespace InkoraKit
