#include "TraceText.h"

#include "platform/radios/trace/Trace.h"

#include <InkoraKit/platform/CBCentralManager.h>
#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/virtual/RadioTrace.h>
#include <InkoraKit/virtual/ReplayRadio.h>
#include <InkoraKit/virtual/VirtualClock.h>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace InkoraKit {

std::optional<std::string> replayTrace(std::string_view text) {
    try {
        readTrace(text);
    } catch (const NSError& error) {
        if (!error.localizedDescription().starts_with("line ")) std::abort();
        return std::nullopt;
    }
    const auto folder = std::filesystem::temp_directory_path();
    const auto file = folder / ("trace-" + std::to_string(::getpid()));
    std::ofstream(file, std::ios::binary) << text;
    RunLoop::main().setClock(std::make_shared<VirtualClock>());
    {
        const auto radio = ReplayRadio::install(file);
        const auto trace = RadioTrace::record(file);
        radio->setWhenOver([] { RunLoop::main().stop(); });
        const CBCentralManager central(std::weak_ptr<CBCentralManagerDelegate>{});
        RunLoop::main().run();
        trace->end();
    }
    RunLoop::main().runFor(0);
    std::ifstream written(file, std::ios::binary);
    std::string recorded{std::istreambuf_iterator<char>(written), {}};
    std::filesystem::remove(file);
    readTrace(recorded);
    return recorded;
}

}  // namespace InkoraKit
