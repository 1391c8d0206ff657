#pragma once

#include "pen/Format.h"

namespace InkoraTool {

/// Lines for programs: each is a JSON object, which says in `event` what has happened.
class JsonFormat final : public Format {
public:
    std::string searching() const override;
    std::string connected(const std::string& name, const std::string& identifier) const override;
    std::string lost() const override;
    std::string unavailable(InkoraKit::CBManagerStateReason reason) const override;
    std::string colour(const InkoraKit::UIColor& colour) const override;
    std::string battery(std::int64_t percent) const override;
    std::string signalStrength(std::optional<std::int64_t> dBm) const override;
    std::string info(const PenInfo& info) const override;
    std::string progress(std::int64_t seconds) const override;
};

}  // namespace InkoraTool
