#include "PenScript.h"

#include "platform/foundation/process/Fatal.h"
#include "support/PenScenario.h"
#include "support/ScriptedRadio.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <set>
#include <sstream>

namespace InkoraKit {
namespace {

struct FatalStop {
    std::string message;
};

constexpr const char* nilFound = "unexpectedly found nil while unwrapping an Optional value";
constexpr const char* outOfRange = "Index out of range";

std::optional<Data> bytesFromHex(const std::string& hex) {
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        std::uint8_t byte = 0;
        std::from_chars(hex.data() + i, hex.data() + i + 2, byte, 16);
        bytes.push_back(byte);
    }
    return Data(bytes);
}

class Player {
public:
    explicit Player(Accounting rule) : accounting(rule) {
        RunLoop::main().setClock(std::make_shared<VirtualClock>());
        ScriptedRadio::install();
    }

    ~Player() {
        installRadio({});
        handler.reset();
        // What is still queued, and the timers that hold the handler, end before the next script.
        for (bool isDone = false; !isDone;) {
            try {
                RunLoop::main().runFor(100);
                isDone = true;
            } catch (const FatalStop&) {
                // One after the end of the script: its process would be no more.
            }
        }
    }

    void play(std::string_view script) {
        std::istringstream lines{std::string(script)};
        for (std::string line; std::getline(lines, line);)
            if (!playLine(line)) return;
        step([] { RunLoop::main().runFor(10); });
    }

private:
    // Answers false when the engine has come to an end.
    bool playLine(const std::string& line) {
        arguments = std::istringstream(line);
        std::string word;
        arguments >> word;
        const auto action = actions.find(word);
        return action == actions.end() || step([&] { (this->*action->second)(); });
    }

    bool step(const std::function<void()>& action) {
        try {
            action();
            return true;
        } catch (const FatalStop& stop) {
            if (accounting == Accounting::byScript && accountedFor.contains(stop.message))
                return false;
            std::fprintf(stderr, "unaccounted fatal stop: %s\n", stop.message.c_str());
            std::abort();
        }
    }

    unsigned number() {
        unsigned value = 0;
        arguments >> value;
        return value;
    }
    std::string word() {
        std::string text;
        arguments >> text;
        return text;
    }
    std::optional<std::string> restOfLine() {
        std::string text;
        std::getline(arguments >> std::ws, text);
        return text.empty() ? std::nullopt : std::optional(text);
    }
    const UUID& device() { return devices[number() % devices.size()]; }
    RadioListener& events() { return *ScriptedRadio::opened()->events; }
    bool hasRadio() const { return ScriptedRadio::opened() && ScriptedRadio::opened()->events; }
    const NSError error{"radio", 1};

    void adapter() {
        if (hasRadio()) events().adapterStateChanged(static_cast<CBManagerState>(number() % 6));
    }
    void sight() {
        if (!hasRadio()) return;
        Sighting seen{.identifier = device(), .name = {}, .advertisement = {}, .rssi = -50};
        seen.advertisement.localName = restOfLine();
        events().sighted(seen);
    }
    void connected() {
        if (hasRadio()) events().connected(device());
    }
    void failed() {
        if (hasRadio()) events().connectionFailed(device(), error);
    }
    void lost() {
        if (hasRadio()) events().disconnected(device(), error);
    }
    void gone() {
        if (hasRadio()) events().disconnected(device(), std::nullopt);
    }
    void services() {
        if (!hasRadio()) return;
        const UUID& from = device();
        std::vector<RemoteService> found;
        for (std::string next = word(); !next.empty(); next = word()) {
            if (next == "!") {
                accountedFor.insert(nilFound);  // no list of services
                return events().servicesDiscovered(from, {}, error);
            }
            const auto handle = static_cast<AttributeHandle>(std::atoi(next.c_str()));
            found.push_back({handle, CBUUID(handle == 1 || handle == 5 ? "1F1F" : "180A")});
        }
        events().servicesDiscovered(from, std::move(found), std::nullopt);
    }
    void characteristics() {
        if (!hasRadio()) return;
        const UUID& from = device();
        const AttributeHandle service = number();
        std::vector<RemoteCharacteristic> found;
        for (std::string next = word(); !next.empty(); next = word()) {
            if (next == "!") {
                accountedFor.insert(nilFound);  // no list of characteristics
                return events().characteristicsDiscovered(from, service, {}, error);
            }
            const auto handle = static_cast<AttributeHandle>(std::atoi(next.c_str()));
            found.push_back({handle, CBUUID(handle == 2 ? "1F14" : handle == 3 ? "1F17" : "2A19")});
        }
        events().characteristicsDiscovered(from, service, std::move(found), std::nullopt);
    }
    std::optional<Data> value(AttributeHandle handle, const std::string& text) {
        if (text == "-" || text == "!") return std::nullopt;
        std::optional<Data> bytes = bytesFromHex(text);
        // A colour of less than three bytes has no three components; a battery level is a number.
        if (handle == 2 && bytes->size() < 3) accountedFor.insert(outOfRange);
        if (handle == 3 &&
            (bytes->empty() || bytes->size() > 8 || (bytes->size() == 8 && (*bytes)[0] >= 0x80)))
            accountedFor.insert(nilFound);
        return bytes;
    }
    void read() {
        if (!hasRadio()) return;
        const UUID& from = device();
        const AttributeHandle handle = number();
        const std::string text = word();
        auto answer = value(handle, text);
        events().valueRead(from, handle, std::move(answer),
                           text == "!" ? std::optional(error) : std::nullopt);
    }
    void notify() {
        if (!hasRadio()) return;
        const UUID& from = device();
        const AttributeHandle handle = number();
        events().valueNotified(from, handle, value(handle, word()));
    }
    void subscribed() {
        if (!hasRadio()) return;
        const UUID& from = device();
        const AttributeHandle handle = number();
        const bool isRefused = word() == "!";
        events().subscriptionChanged(from, handle, !isRefused,
                                     isRefused ? std::optional(error) : std::nullopt);
    }
    void rssi() {
        if (!hasRadio()) return;
        const UUID& from = device();
        const std::string text = word();
        int strength = 0;
        std::from_chars(text.data(), text.data() + text.size(), strength);
        events().rssiRead(from, strength, std::nullopt);
    }
    void name() {
        if (!hasRadio()) return;
        const UUID& from = device();
        events().nameChanged(from, restOfLine().value_or(""));
    }

    void start() { handler->startInkoraHandler(); }
    void stop() { handler->stopInkoraHandler(); }
    void publish() { handler->publishHandler(host); }
    void unpublish() { handler->unPublishHandler(); }
    void battery() {
        if (handler->connectedPeripheral() && !handler->batterLifeCharacterstic())
            accountedFor.insert(nilFound);
        handler->requestBatteryLifeValue();
    }
    void proximity() { handler->requestBluetoothSignalInfo(); }
    void info() { handler->requestDeviceGeneralInfo(); }
    void wait() { drain(number() % 100 / 10.0); }
    void run() { drain(0); }
    void drain(double seconds) {
        RunLoop::main().runFor(seconds);
        accountedFor.clear();  // whatever was malformed has been dealt with
    }

    using Action = void (Player::*)();
    inline static const std::map<std::string, Action> actions = {
        {"adapter", &Player::adapter},
        {"sight", &Player::sight},
        {"connected", &Player::connected},
        {"failed", &Player::failed},
        {"lost", &Player::lost},
        {"gone", &Player::gone},
        {"services", &Player::services},
        {"characteristics", &Player::characteristics},
        {"read", &Player::read},
        {"notify", &Player::notify},
        {"subscribed", &Player::subscribed},
        {"rssi", &Player::rssi},
        {"name", &Player::name},
        {"start", &Player::start},
        {"stop", &Player::stop},
        {"publish", &Player::publish},
        {"unpublish", &Player::unpublish},
        {"battery", &Player::battery},
        {"proximity", &Player::proximity},
        {"info", &Player::info},
        {"wait", &Player::wait},
        {"run", &Player::run},
    };

    const Accounting accounting;
    std::array<UUID, 3> devices;
    std::shared_ptr<RecordingHost> host = std::make_shared<RecordingHost>();
    std::shared_ptr<OpenHandler> handler = std::make_shared<OpenHandler>();
    std::istringstream arguments;
    std::set<std::string> accountedFor;  // fatal stops that what is queued may lead to
};

}  // namespace

// In place of the kit's own, which would end the process: a stop can be looked at here.
void fatalError(std::string_view message) {
    throw FatalStop{std::string(message)};
}

void runPenScript(std::string_view script, Accounting accounting) {
    Player(accounting).play(script);
}

}  // namespace InkoraKit
