#pragma once

#include <InkoraKit/platform/CBManagerStateReason.h>
#include <InkoraKit/platform/UIColor.h>

#include "pen/PenInfo.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace InkoraTool {

/// How what happens is put into lines: for people or for programs.
class Format {
public:
    virtual ~Format() = default;

    virtual std::string searching() const = 0;
    virtual std::string connected(const std::string& name, const std::string& identifier) const = 0;
    virtual std::string lost() const = 0;
    virtual std::string unavailable(InkoraKit::CBManagerStateReason reason) const = 0;
    virtual std::string colour(const InkoraKit::UIColor& colour) const = 0;
    virtual std::string battery(std::int64_t percent) const = 0;
    virtual std::string signalStrength(std::optional<std::int64_t> dBm) const = 0;
    virtual std::string info(const PenInfo& info) const = 0;

    /// What is shown for a moment, beside the lines, while a pen is looked for; empty for nothing.
    virtual std::string progress(std::int64_t seconds) const = 0;
};

/// JSON, a line an object, or text that suits standard output.
std::unique_ptr<Format> makeFormat(bool json);

}  // namespace InkoraTool
