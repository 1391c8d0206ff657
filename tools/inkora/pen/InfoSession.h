#pragma once

#include "pen/PenInfo.h"
#include "pen/PenSession.h"

namespace InkoraTool {

/// `inkora info`: asks the pen for all that it tells of itself, once, and shows what was answered.
class InfoSession final : public PenSession {
public:
    explicit InfoSession(std::unique_ptr<Format> format);

    /// Seconds from the connection on in which the pen has to answer.
    static constexpr double longestAnswer = 5.0;
    /// Seconds that finding and connecting the pen may take.
    static constexpr double longestConnection = 30.0;

protected:
    void searching() override;
    void connected(const std::string& name, const std::string& identifier) override;
    void battery(std::int64_t percent) override;
    void signalStrength(std::optional<std::int64_t> dBm) override;
    void interrupted() override;

private:
    void showWhenComplete();
    void show();

    PenInfo info_;
};

}  // namespace InkoraTool
