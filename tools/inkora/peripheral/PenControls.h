#pragma once

#include <InkoraKit/platform/Data.h>

#include "palette/Colour.h"

#include <cstdint>
#include <optional>
#include <string>

namespace InkoraTool {

/// What one can do with a pen that this program is.
class PenControls {
public:
    /// Captures a colour, or one drawn at random each time: `count` times, `interval` seconds
    /// apart.
    virtual void capture(const std::optional<Colour>& colour, std::int64_t count,
                         double interval) = 0;
    /// Tells any bytes as a colour.
    virtual void tell(const InkoraKit::Data& value) = 0;
    virtual void setBattery(std::uint8_t percent) = 0;
    virtual void setName(const std::string& name) = 0;
    /// Ends the link.
    virtual void drop() = 0;
    /// Leaves what hosts ask without an answer, until it is to answer again.
    virtual void setAnswering(bool isAnswering) = 0;
    /// Advertises, or no longer does.
    virtual void setVisible(bool isVisible) = 0;
    virtual void quit() = 0;

protected:
    ~PenControls() = default;
};

}  // namespace InkoraTool
