#include "Air.h"
#include "Descriptor.h"

#include <InkoraKit/platform/RunLoop.h>
#include <fcntl.h>
#include <sys/mman.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <map>
#include <sstream>
#include <string>

//     lab-air SOCKET COMMANDS
//
// SOCKET is btvirt's; commands are lines that come out of the FIFO.
namespace {

using Argument = const std::string&;

const std::map<std::string, std::function<void(Air&, Argument)>> commands = {
    {"drop",  // the reason in hexadecimal digits
     [](Air& air, Argument reason) {
         air.drop(static_cast<std::uint8_t>(std::strtoul(reason.c_str(), nullptr, 16)));
     }},
    {"drop-next-link", [](Air& air, Argument) { air.dropNextLink(); }},
    {"plug", [](Air& air, Argument) { air.plug(); }},
    {"range", [](Air& air, Argument range) { air.setInRange(range != "out"); }},
    {"requests", [](Air& air, Argument what) { air.holdRequests(what == "held"); }},
    {"rssi", [](Air& air, Argument dBm) { air.setStrength(std::atoi(dBm.c_str())); }},
    {"stall", [](Air& air, Argument stalled) { air.stall(stalled == "on"); }},
    {"unplug", [](Air& air, Argument) { air.unplug(); }},
};

void obey(Air& air, Argument line) {
    std::string command, argument;
    std::istringstream(line) >> command >> argument;
    const auto found = commands.find(command);
    if (found != commands.end()) return found->second(air, argument);
    std::fprintf(stderr, "lab-air: no command: %s\n", line.c_str());
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) return EXIT_FAILURE;
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    ::mlockall(MCL_CURRENT | MCL_FUTURE);  // nothing is to be waited for once the kernel waits
    try {
        Air air(arguments[1]);
        std::string typed;
        const auto read = [&](const Descriptor& fifo) {
            std::array<char, 512> bytes;
            const auto count = ::read(fifo.descriptor(), bytes.data(), bytes.size());
            if (count > 0) typed.append(bytes.data(), static_cast<std::size_t>(count));
            for (auto end = typed.find('\n'); end != std::string::npos; end = typed.find('\n')) {
                obey(air, typed.substr(0, end));
                typed.erase(0, end + 1);
            }
        };
        // Also open for writing: so it does not end when a writer does.
        const Descriptor fifo(::open(arguments[2], O_RDWR), arguments[2], [&] { read(fifo); });
        InkoraKit::RunLoop::main().run();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "lab-air: %s\n", error.what());
        return EXIT_FAILURE;
    }
}
