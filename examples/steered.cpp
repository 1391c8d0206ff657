// A host that is steered by another program: `start` and `stop` are lines on standard input, what
// the kit tells is a JSON object a line on standard output. It ends with its input.
#include <InkoraKit/InkoraKit.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>

using namespace InkoraKit;

struct Reporter : InkoraProtocols {
    void didConnectedToPeripheral() override { print("connected"); }
    void didDisconnectPeripheral() override {
        print("disconnected");
        InkoraManager::requestInkoraDeviceBatteryInfo();  // of the next connection
    }
    void didFailedToInterrogate(const NSError& error) override { print(error); }
    void didFailToConnectWithBlueTooth(const NSError& error) override { print(error); }

    void didPeripheralIndicated(std::int64_t percent) override {
        std::printf("{\"event\":\"battery\",\"percent\":%d}\n", static_cast<int>(percent));
    }
    void didPeripheralCaptured(const UIColor& colour) override {
        const auto byte = [](double component) {
            return static_cast<int>(std::lround(component * 255));
        };
        std::printf("{\"event\":\"colour\",\"hex\":\"#%02X%02X%02X\"}\n", byte(colour.red()),
                    byte(colour.green()), byte(colour.blue()));
    }

    static void print(const char* event) { std::printf("{\"event\":\"%s\"}\n", event); }
    static void print(const NSError& error) {
        std::printf("{\"event\":\"failed\",\"code\":%d}\n", static_cast<int>(error.code()));
    }
};

/// Standard input, beside whatever else the run loop waits for.
class Commands : public RunLoopSource {
public:
    int descriptor() const override { return STDIN_FILENO; }

    void service() override {
        std::array<char, 512> bytes;
        const auto count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
        if (count <= 0) return RunLoop::main().stop();
        typed_.append(bytes.data(), static_cast<std::size_t>(count));
        for (auto end = typed_.find('\n'); end != std::string::npos; end = typed_.find('\n')) {
            obey(typed_.substr(0, end));
            typed_.erase(0, end + 1);
        }
    }

private:
    static void obey(const std::string& command) {
        if (command == "start") InkoraManager::startDevicePairing();
        if (command == "stop") InkoraManager::stopPairingDevice();
    }

    std::string typed_;
};

int main() {
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    const auto reporter = std::make_shared<Reporter>();
    InkoraManager::registerInkoraManager(reporter);
    InkoraManager::requestInkoraDeviceBatteryInfo();
    Commands commands;
    RunLoop::main().addSource(commands);
    RunLoop::main().run();
    RunLoop::main().removeSource(commands);
}
