#include "NullCastingWriter.h"

#include <InkoraKit/JSON.h>

#include "platform/foundation/values/Storage.h"

#include <vector>

namespace InkoraKit {

namespace {

/// An array or dictionary that has been begun.
struct Frame {
    Any container;
    const Any* next;  // element, or key and value of a member
    std::uint32_t remaining;
    bool hasKeys;
};

class NullCastingWriter {
public:
    explicit NullCastingWriter(std::int64_t mostNested) : mostNested_(mostNested) {}

    std::optional<std::string> write(const Any& container) {
        open(container);
        while (!frames_.empty()) {
            if (frames_.back().remaining == 0) {
                close();
            } else if (!writeValue(nextValue())) {
                return std::nullopt;
            }
        }
        return std::move(text_);
    }

private:
    void open(const Any& container) {
        const bool hasKeys = Storage::tag(container) == AnySlot::dictionary;
        text_ += hasKeys ? '{' : '[';
        frames_.push_back({container,
                           reinterpret_cast<const Any*>(Storage::slot(container).pointer()),
                           Storage::count(container), hasKeys});
    }

    void close() {
        text_ += frames_.back().hasKeys ? '}' : ']';
        frames_.pop_back();
    }

    /// Writes what comes before the next value.
    const Any& nextValue() {
        Frame& frame = frames_.back();
        --frame.remaining;
        if (text_.back() != '[' && text_.back() != '{') text_ += ',';
        if (frame.hasKeys) {
            text_ += '"';
            text_ += Storage::text(*frame.next++);
            text_ += "\": ";
        }
        return *frame.next++;
    }

    bool writeValue(const Any& value) {
        if (!value.hasValue()) {
            text_ += "null";
            return true;
        }
        if (static_cast<std::int64_t>(frames_.size()) > mostNested_) return false;
        const JSON json(value);
        switch (json.type()) {
            case Type::array:
            case Type::dictionary:
                open(json.object());
                return true;
            case Type::string:
                writeQuoted(json.stringValue());
                return true;
            case Type::number:
            case Type::bool_:
                text_ += json.stringValue();
                return true;
            case Type::null:
                text_ += "null";
                return true;
            default:
                return false;
        }
    }

    void writeQuoted(std::string_view text) {
        text_ += '"';
        for (const char character : text) {
            if (character == '"' || character == '\\') text_ += '\\';
            text_ += character;
        }
        text_ += '"';
    }

    std::int64_t mostNested_;
    std::vector<Frame> frames_;
    std::string text_;
};

}  // namespace

std::optional<std::string> textCastingNilToNull(const Any& container, std::int64_t mostNested) {
    return NullCastingWriter(mostNested).write(container);
}

}  // namespace InkoraKit
