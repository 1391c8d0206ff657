#include "peripheral/EventLines.h"

#include <InkoraKit/platform/UIColor.h>

#include "JsonLine.h"
#include "Utf8.h"
#include "pen/Format.h"
#include "pen/TextFormat.h"

namespace InkoraTool {
namespace {

class TextLines final : public EventLines {
public:
    std::string event(std::string_view name, const EventFields& fields) const override {
        std::string value;
        for (const auto& [field, content] : fields) {
            if (!value.empty()) value += ' ';
            if (const auto* percent = std::get_if<std::int64_t>(&content))
                value += std::to_string(*percent) + " %";
            else
                value += printableText(std::get<std::string>(content));
        }
        return value.empty() ? std::string(name) : labelled(name, value);
    }

    std::string captured(const Colour& colour) const override {
        const auto component = [](std::uint8_t byte) { return byte / 255.0; };
        return format_->colour(InkoraKit::UIColor(component(colour[0]), component(colour[1]),
                                                  component(colour[2]), 1));
    }

private:
    const std::unique_ptr<Format> format_ = makeFormat(false);  // with a host's swatches
};

class JsonLines final : public EventLines {
public:
    std::string event(std::string_view name, const EventFields& fields) const override {
        JsonLine line;
        line.add("event", name);
        for (const auto& [field, content] : fields)
            std::visit([&line, key = field](const auto& value) { line.add(key, value); }, content);
        return line.text();
    }

    std::string captured(const Colour& colour) const override {
        return event("captured", {{"hex", hexText(colour)}});
    }
};

}  // namespace

std::unique_ptr<EventLines> makeEventLines(bool json) {
    if (json) return std::make_unique<JsonLines>();
    return std::make_unique<TextLines>();
}

}  // namespace InkoraTool
