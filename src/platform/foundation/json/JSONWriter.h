#pragma once

#include <InkoraKit/platform/Any.h>
#include <InkoraKit/platform/JSONSerialization.h>

#include "platform/foundation/text/Bytes16.h"
#include "platform/foundation/values/Storage.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace InkoraKit {

/// Writes one value as JSON text (RFC 8259). How deep the value is nested costs no depth of calls.
class JSONWriter {
public:
    static constexpr std::size_t mostNested = 512;  // a value within the innermost counts as well

    explicit JSONWriter(JSONSerialization::WritingOptions options);

    /// @param result takes the text. What it held before is lost, and it may keep room for more.
    /// @return whether the value could be written; if not, `fault()` tells why.
    bool write(const Any& value, std::string& result);
    const std::string& fault() const noexcept { return fault_; }

private:
    /// An array or dictionary that has been begun: what it has yet to show.
    struct Frame {
        const AnySlot* next;      // element, or key and value of a member
        std::uint64_t remaining;  // twice as many, and one more if they have keys

        bool hasKeys() const noexcept { return (remaining & 1) != 0; }
    };

    // These take the place to write to, and give back that after what they wrote.

    template <bool isPretty>
    char* writeDocument(const AnySlot& root, char* to);
    char* writeLeaf(const AnySlot& leaf, char* to);
    char* writeNumber(const AnySlot& number, char* to);
    char* writeText(const AnySlot& text, char* to);
    char* writeAnyText(const AnySlot& text, char* to);
    static char* breakLine(char* to, std::size_t depth);
    char* fail(std::string_view reason);
    char* failAt(const AnySlot& value);

    Frame begun(const AnySlot& container);
    void sortMembers(const AnySlot& dictionary);
    const AnySlot* nextSorted();
    static std::size_t expectedSize(const AnySlot& root);
    std::uint32_t specialsOf(Bytes16 bytes) const;
    bool has(JSONSerialization::WritingOptions option) const noexcept;

    /// Makes room for so many more bytes, of at most `mostAtOnce`.
    char* ensure(char* to, std::size_t size) {
        return static_cast<std::size_t>(end_ - to) < size ? grow(to) : to;
    }
    char* grow(char* to);

    static constexpr std::size_t mostAfterText = 64;  // a colon, a number or the next short text
    static constexpr std::size_t mostAtOnce = 2 * mostNested + 2 * mostAfterText;  // indented

    JSONSerialization::WritingOptions options_;
    std::uint32_t slashes_;  // of the bytes that are slashes, those to escape
    const AnySlot* root_ = nullptr;
    std::string* result_ = nullptr;
    std::string fault_;
    std::vector<const MemberSlots*> sorted_;  // of the dictionaries begun, the next one last
    std::array<Frame, mostNested> frames_;    // around the innermost
    std::array<char, std::size_t{16} * 1024> buffer_;
    // Where the text is: in the buffer, until it is too long for that, then in the result.
    char* begin_ = buffer_.data();
    char* end_ = buffer_.data() + buffer_.size();
};

}  // namespace InkoraKit
