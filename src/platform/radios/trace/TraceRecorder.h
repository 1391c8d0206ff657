#pragma once

#include <InkoraKit/virtual/RadioTrace.h>

#include "platform/bluetooth/radio.h"

#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace InkoraKit {

/// The file that a trace is written to, from the opening of it to its end.
///
/// A burst of values costs no call of the system each: they wait in memory for the next line of
/// another kind, at most a second if there is any line at all by then.
class TraceRecorder {
public:
    TraceRecorder(const std::string& path, RadioTrace::Identifiers identifiers);
    ~TraceRecorder();
    TraceRecorder(const TraceRecorder&) = delete;
    TraceRecorder& operator=(const TraceRecorder&) = delete;

    bool isRecording() const noexcept { return file_ != nullptr; }
    /// Times count from now on.
    void begin();
    using Fields = std::initializer_list<std::pair<std::string_view, Any>>;
    /// Writes a line: its time, what it is (`do` or `event` and a name), what it is of if it is of
    /// a peripheral, and those of the fields that have a value.
    void write(std::string_view kind, std::string_view name, const UUID* peripheral,
               Fields fields = {});
    void end();
    const std::optional<NSError>& error() const noexcept { return error_; }

    /// A text that may hold addresses, as it is to be written.
    std::string masked(std::string text) const;

private:
    Dictionary stamped();
    Any shown(const UUID& peripheral);
    void writeLine(const Dictionary& members);
    void flush();

    std::string path_;
    RadioTrace::Identifiers identifiers_;
    std::FILE* file_ = nullptr;  // null once the trace has ended
    double began_;
    double last_ = 0;     // the time of the last line
    double flushed_ = 0;  // when
    std::unordered_map<UUID, std::uint32_t> numbers_;
    std::optional<NSError> error_;
};

}  // namespace InkoraKit
