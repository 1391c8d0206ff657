#pragma once

#include "palette/PaletteFile.h"
#include "pen/PenSession.h"
#include "pen/WatchOptions.h"

namespace InkoraTool {

/// `inkora watch`: shows whatever comes from the pen, as it comes.
class WatchSession final : public PenSession {
public:
    /// @throws Failure when the options name a palette that cannot be continued
    WatchSession(const WatchOptions& options, std::unique_ptr<Format> format);

    /// Writes the colours that are in no file yet.
    /// @throws Failure when that cannot be
    void savePalette();

protected:
    void searching() override;
    void connected(const std::string& name, const std::string& identifier) override;
    void lost() override;
    void unavailable(InkoraKit::CBManagerStateReason reason) override;
    void captured(const InkoraKit::UIColor& colour) override;
    void battery(std::int64_t percent) override;
    void signalStrength(std::optional<std::int64_t> dBm) override;
    void interrupted() override;

private:
    void timeIsUp();
    void askAgainLater();
    void keep(const InkoraKit::UIColor& colour);

    WatchOptions options_;
    std::optional<PaletteFile> palette_;
    bool isPaletteToBeSaved_ = false;
    std::int64_t coloursShown_ = 0;
};

}  // namespace InkoraTool
