#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/virtual/ReplayDeparture.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace InkoraKit {

class TracePlayer;

/// A radio that plays a trace (`RadioTrace`) to the kit: the events come at their recorded times,
/// and the commands are compared with those recorded.
///
///     auto radio = ReplayRadio::install("fault.jsonl");
///     radio->setWhenOver([] { RunLoop::main().stop(); });
///     InkoraManager::startDevicePairing();
///     RunLoop::main().run();
///     for (const auto& departure : radio->departures()) ...
///
/// By the machine's clock it takes as long as the recording did; under a `VirtualClock` nobody
/// waits, and every run is the same. An event waits for the commands recorded before it, for at
/// most a second; then it comes all the same. Belongs to the run loop's thread.
class INKORA_EXPORT ReplayRadio {
public:
    /// Reads the trace and makes the next central manager use this radio; further ones find none.
    /// It stays installed for as long as the caller keeps it, or until another is installed.
    /// @throws NSError (NSCocoaErrorDomain) with a description that names file and line: 256 where
    /// the file cannot be read, 3840 where it is no trace, one of another version, or cut off.
    [[nodiscard]] static std::shared_ptr<ReplayRadio> install(const std::string& path);

    /// Brings back the system's radio for managers created from now on. To the one that uses this
    /// it is as if the adapter were pulled out.
    ~ReplayRadio();
    /// Neither copied nor moved: the manager refers to it.
    ReplayRadio(const ReplayRadio&) = delete;
    ReplayRadio& operator=(const ReplayRadio&) = delete;

    /// Whether all of the trace was played. From then on a link can be ended, and that is all.
    bool isOver() const noexcept;
    /// Called once when it is over, from the run loop.
    void setWhenOver(std::function<void()> action);

    /// Where the commands parted from those recorded, in the order of time.
    const std::vector<ReplayDeparture>& departures() const noexcept;
    /// Called for each of them. The kit may be in the midst of a step: nothing of it may be asked.
    void setWhenDeparted(std::function<void(const ReplayDeparture&)> action);

private:
    explicit ReplayRadio(std::shared_ptr<TracePlayer> player);

    std::shared_ptr<TracePlayer> player_;
};

}  // namespace InkoraKit
