#include "PrivateBus.h"

#include <InkoraKit/platform/RunLoop.h>

#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace InkoraKit {
namespace {

constexpr const char* program = "/usr/bin/dbus-daemon";

std::string configuration(bool deniesBluez, const std::string& folder) {
    const std::string denial = deniesBluez ? R"(<deny send_destination="org.bluez"/>)" : "";
    return R"(<busconfig><listen>unix:tmpdir=/tmp</listen><auth>EXTERNAL</auth><servicedir>)" +
           folder +
           R"(</servicedir><limit name="max_match_rules_per_connection">4</limit>)"
           R"(<policy context="default"><allow user="*"/><allow own="*"/>)"
           R"(<allow send_destination="*"/><allow receive_sender="*"/>)" +
           denial + "</policy></busconfig>";
}

std::string service(const std::string& folder) {
    return "[D-BUS Service]\nName=org.bluez\nExec=/bin/sh -c 'echo >> " + folder +
           "/starts; false'\n";
}

// The daemon writes its address, a line, once it accepts connections.
std::string readLine(int descriptor) {
    std::string line;
    char character = 0;
    while (::read(descriptor, &character, 1) == 1 && character != '\n') line += character;
    return line;
}

}  // namespace

class PrivateBus::QuietClock final : public Clock {
public:
    explicit QuietClock(const std::string& address) : bus_(connect(address)) {}

    double now() const override { return now_; }

    // By the last of some answers the bus has passed on what it was sent before the first.
    bool skipTo(double when) override {
        for (int i = 0; i < 4; ++i)
            sd_bus_call_method(bus_.get(), "org.freedesktop.DBus", "/", "org.freedesktop.DBus",
                               "GetId", nullptr, nullptr, nullptr);
        RunLoop::main().sourcesChanged();
        pollfd loop{RunLoop::main().descriptor(), POLLIN, 0};
        if (::poll(&loop, 1, 0) != 0) return false;
        now_ = when;
        return true;
    }

private:
    std::shared_ptr<sd_bus> bus_;
    double now_ = 0;
};

bool PrivateBus::isAvailable() {
    return ::access(program, X_OK) == 0;
}

PrivateBus::PrivateBus(bool deniesBluez) {
    folder_ = std::filesystem::temp_directory_path() / ("bluez-test-" + std::to_string(::getpid()));
    std::filesystem::create_directory(folder_);
    std::ofstream(folder_ / "org.bluez.service") << service(folder_);
    std::ofstream(folder_ / "bus.conf") << configuration(deniesBluez, folder_);
    const std::string option = "--config-file=" + (folder_ / "bus.conf").string();

    std::array<int, 2> pipe{};
    if (::pipe(pipe.data()) != 0) return;
    daemon_ = ::fork();
    if (daemon_ == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::dup2(pipe[1], STDOUT_FILENO);
        ::close(STDERR_FILENO);  // where it complains of limits that it may not raise
        ::execl(program, program, option.c_str(), "--nofork", "--print-address=1", nullptr);
        ::_exit(127);
    }
    ::close(pipe[1]);
    address_ = readLine(pipe[0]);
    ::close(pipe[0]);
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", address_.c_str(), 1);
    RunLoop::main().setClock(std::make_shared<QuietClock>(address_));
}

PrivateBus::~PrivateBus() {
    ::unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    if (daemon_ > 0) {
        ::kill(daemon_, SIGKILL);
        ::waitpid(daemon_, nullptr, 0);
    }
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

std::shared_ptr<sd_bus> PrivateBus::connect(const std::string& address) {
    sd_bus* made = nullptr;
    sd_bus_new(&made);
    sd_bus_set_address(made, address.c_str());
    sd_bus_set_bus_client(made, true);
    sd_bus_start(made);
    return {made, sd_bus_flush_close_unref};
}

int PrivateBus::starts() const {
    std::ifstream file(folder_ / "starts");
    int starts = 0;
    for (std::string line; std::getline(file, line);) ++starts;
    return starts;
}

}  // namespace InkoraKit
