#pragma once

#include "pen/Format.h"
#include "terminal/Terminal.h"

#include <string_view>

namespace InkoraTool {

/// A line for people: `battery     87 %`.
std::string labelled(std::string_view label, const std::string& value);

/// Lines for people: what it is, then its value. Colours come with a swatch where there are
/// colours.
class TextFormat final : public Format {
public:
    explicit TextFormat(TerminalColours colours = TerminalColours::none) : colours_(colours) {}

    std::string searching() const override;
    std::string connected(const std::string& name, const std::string& identifier) const override;
    std::string lost() const override;
    std::string unavailable(InkoraKit::CBManagerStateReason reason) const override;
    std::string colour(const InkoraKit::UIColor& colour) const override;
    std::string battery(std::int64_t percent) const override;
    std::string signalStrength(std::optional<std::int64_t> dBm) const override;
    std::string info(const PenInfo& info) const override;
    std::string progress(std::int64_t seconds) const override;

private:
    TerminalColours colours_;
};

}  // namespace InkoraTool
