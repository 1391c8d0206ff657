#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/NSError.h>

#include <memory>
#include <optional>
#include <string>

namespace InkoraKit {

class TraceRecorder;

/// Writes down what the kit and a radio, of whatever kind, say to each other: each command and each
/// event with its time, a JSON object a line. `ReplayRadio` plays it again, on a machine without
/// the pen and without Bluetooth.
///
///     const auto trace = RadioTrace::record("fault.jsonl");
///     InkoraManager::startDevicePairing();
///
/// The trace is whole once it has ended: by `end`, by the end of this object or of the radio, or by
/// that of the process, a fatal stop of the kit's included. A process that the system kills leaves
/// it cut off. Belongs to the run loop's thread.
class INKORA_EXPORT RadioTrace {
public:
    /// How the trace names peripherals.
    enum class Identifiers {
        shortened,  ///< 1, 2, 3 in the order heard; addresses in names and errors are masked
        full,       ///< by their identifiers, which on Linux hold their addresses
    };

    /// Begins a trace of the radio that the next central manager opens, which is that of the kit
    /// when called before the first start. One trace is recorded at a time: the one before ends.
    /// @param path the file, whose contents are replaced
    /// @throws NSError (NSCocoaErrorDomain 512) where it cannot be written.
    [[nodiscard]] static std::shared_ptr<RadioTrace> record(
        const std::string& path, Identifiers identifiers = Identifiers::shortened);

    /// Ends the trace; what follows passes unrecorded.
    ~RadioTrace();
    /// Neither copied nor moved: there is one file.
    RadioTrace(const RadioTrace&) = delete;
    RadioTrace& operator=(const RadioTrace&) = delete;

    /// Ends the trace now. Harmless when it has ended.
    void end();

    /// Why the file could not be written to its end, as when the disk is full: the first reason.
    std::optional<NSError> error() const;

private:
    explicit RadioTrace(std::shared_ptr<TraceRecorder> recorder);

    std::shared_ptr<TraceRecorder> recorder_;
};

}  // namespace InkoraKit
