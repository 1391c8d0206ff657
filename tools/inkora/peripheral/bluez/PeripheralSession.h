#pragma once

#include "ExitStatus.h"
#include "palette/Colour.h"
#include "peripheral/EventLines.h"
#include "peripheral/Instruction.h"
#include "peripheral/PeripheralOptions.h"
#include "peripheral/bluez/BluezPen.h"
#include "terminal/LineSource.h"
#include "terminal/Output.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <string>

namespace InkoraTool {

/// `inkora pen`: one run as a pen. Follows its script and its input, and shows what becomes of it.
class PeripheralSession final : public std::enable_shared_from_this<PeripheralSession>,
                                private PenControls,
                                private BluezPen::Listener {
public:
    explicit PeripheralSession(const PeripheralOptions& options);

    /// Runs the main run loop until the session has ended.
    ExitStatus run();

private:
    struct Burst {
        std::optional<Colour> colour;
        std::int64_t left;
    };

    // PenControls
    void capture(const std::optional<Colour>& colour, std::int64_t count, double interval) override;
    void tell(const InkoraKit::Data& value) override;
    void setBattery(std::uint8_t percent) override;
    void setName(const std::string& name) override;
    void drop() override;
    void setAnswering(bool isAnswering) override;
    void setVisible(bool isVisible) override;
    void quit() override;

    // BluezPen::Listener
    void advertising(const std::string& name, const std::string& adapter,
                     const std::string& address) override;
    void hidden() override;
    void connected(const std::string& address) override;
    void disconnected(const std::string& address) override;
    void subscribed(BluezPen::Characteristic characteristic, bool isSubscribed) override;
    void wasRead(BluezPen::Characteristic characteristic) override;
    void unavailable(const std::string& why) override;
    void hasRoom() override { followInstructions(); }

    void start();
    void takeLine(const std::string& line);
    void follow(const Instruction& instruction);
    void followInstructions();
    void captureOne(const std::optional<Colour>& colour);
    void show(std::string_view event, const EventFields& fields = {});
    void print(const std::string& line);
    void complain(const std::string& text);
    void after(double seconds, std::function<void()> action);
    void finish(ExitStatus status);

    const PeripheralOptions options_;
    const std::unique_ptr<EventLines> lines_;
    Output output_;
    BluezPen pen_;
    std::optional<LineSource> input_;
    std::mt19937 random_;
    std::deque<Instruction> instructions_;  // not followed yet
    std::optional<Burst> burst_;            // before the first of them
    std::int64_t captured_ = 0;
    bool isAdvertised_ = false;  // once
    bool isFinishing_ = false;
    ExitStatus status_ = ExitStatus::success;
};

}  // namespace InkoraTool
