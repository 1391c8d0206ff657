#include "support/PenScript.h"

#include <InkoraKit/platform/RunLoop.h>

#include "platform/foundation/process/Fatal.h"
#include "platform/foundation/process/RandomSource.h"
#include "support/TranscribedHandler.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace InkoraKit {
namespace {

struct HostFault : std::runtime_error {
    using std::runtime_error::runtime_error;
};

std::function<std::uint32_t(std::uint32_t)> draw;

}  // namespace

// In place of the kit's own, which would end the process: a stop can be looked at here.
void fatalError(std::string_view message) {
    throw FatalStop{std::string(message)};
}

// In place of the kit's own: what is drawn is the script's to say, also what never can be.
std::uint32_t randomBelow(std::uint32_t bound) {
    return draw(bound);
}

/// A host that notes what it hears, and may do something of its own inside.
class TranscribedHost final : public InkoraProtocols {
public:
    TranscribedHost(Transcript& transcript, std::function<void(const std::string&)> doing)
        : transcript_(transcript), doing_(std::move(doing)) {}

    void didFailToConnectWithBlueTooth(const NSError& error) override { hear("disabled", error); }
    void didDiscoverPeripheral() override { hear("discovered"); }
    void didConnectedToPeripheral() override { hear("connected"); }
    void didFailedToInterrogate(const NSError& error) override { hear("failed", error); }
    void didDisconnectPeripheral() override { hear("disconnected"); }
    void didPeripheralCaptured(const UIColor& colour) override {
        hear("colour", colour.description());
    }
    void didPeripheralIndicated(std::int64_t level) override {
        hear("battery", std::to_string(level));
    }
    void didPeripheralSensored(std::int64_t strength) override {
        hear("proximity", std::to_string(strength));
    }
    void didPeripheralProvided(const std::string& name, const std::string& udid) override {
        const auto both = [&] { return "\"" + name + "\" \"" + udid + "\""; };
        const std::string before = both();
        hear("info", before);
        if (both() != before) transcript_.note("changed meanwhile");
    }

private:
    void hear(const std::string& event, const std::string& detail = "") {
        const auto within =
            transcript_.step("host " + event + (detail.empty() ? "" : " ") + detail);
        doing_(event);
    }
    void hear(const std::string& event, const NSError& error) {
        hear(event, std::to_string(error.code()) + " " + error.domain());
    }

    Transcript& transcript_;
    std::function<void(const std::string&)> doing_;
};

PenScript::PenScript(Accounting rule)
    : accounting(rule),
      host(std::make_shared<TranscribedHost>(transcript,
                                             [this](const std::string& event) { happens(event); })),
      handler(std::make_shared<TranscribedHandler>(transcript)) {
    draw = [this](std::uint32_t bound) {
        transcript.note("draw below " + std::to_string(bound));
        return drawn;
    };
    addStages({{"scanning", "publish\nstart\nrun\nadapter 5\nrun\n"},
               {"connecting", "sight 0 InkoraPen\nrun\n"},
               {"linked", "connected 0\nrun\nrssi 0 -50\nrun\n"},
               {"paired",
                "services 0 1\nrun\ncharacteristics 0 1 2 3\nrun\n"
                "read 0 2 01ffffff\nsubscribed 0 2\nread 0 3 64\nsubscribed 0 3\nrun\n"}});
    const auto add = [this](const std::string& name, std::function<void()> action) {
        actions[name] = [this, action] {
            if (handler) action();
        };
    };
    add("start", [this] { handler->startInkoraHandler(); });
    add("stop", [this] { handler->stopInkoraHandler(); });
    add("publish", [this] { handler->publishHandler(host); });
    add("unpublish", [this] { handler->unPublishHandler(); });
    add("proximity", [this] { handler->requestBluetoothSignalInfo(); });
    add("info", [this] { handler->requestDeviceGeneralInfo(); });
    add("battery", [this] {
        if (handler->connectedPeripheral() && !handler->batterLifeCharacterstic())
            accountedFor.insert(nilFound);
        handler->requestBatteryLifeValue();
    });
    add("forget", [this] { host.reset(); });
    add("leave", [this] { handler.reset(); });
    add("throw", [] { throw HostFault("the host's own"); });
    if (accounting != Accounting::byTranscript) return;  // what no host can do accounts for nothing
    add("simulate", [this] { handler->simulate(); });
    add("draw", [this] { drawn = static_cast<std::uint32_t>(number()) % 3; });
    add("state", [this] { handler->setCurrentState(static_cast<ManagerState>(number() % 12)); });
    add("capture-after", [this] { handler->setColorCaptureTimeout(seconds()); });
    add("perform", [this] {
        if (!handler->performSelector(word())) transcript.note("no such step");
    });
}

PenScript::~PenScript() {
    uninstallRadio();
    handler.reset();
    // What is still queued, and the timers that hold the handler, end before the next script.
    for (bool isDone = false; !isDone;) {
        try {
            RunLoop::main().runFor(100);
            isDone = true;
        } catch (const FatalStop&) {
            // One after the end of the script: its process would be no more.
        } catch (const HostFault&) {
        }
    }
}

bool PenScript::playLine(const std::string& line) {
    try {
        RadioScript::playLine(line);
        std::string first;
        std::istringstream(line) >> first;
        // What was malformed has been dealt with, but for a colour that is too short: its
        // characteristic keeps it, and a read that fails comes with it again.
        if (first == "run" || first == "wait") accountedFor.erase(nilFound);
        return true;
    } catch (const HostFault&) {
        transcript.note("thrown out of the loop");
        return true;
    } catch (const FatalStop& stop) {
        transcript.note("fatal stop: " + stop.message);
        if (accounting == Accounting::byTranscript) return false;
        if (accounting == Accounting::byScript && accountedFor.contains(stop.message)) return false;
        std::fprintf(stderr, "unaccounted fatal stop: %s\n", stop.message.c_str());
        std::abort();
    }
}

}  // namespace InkoraKit
