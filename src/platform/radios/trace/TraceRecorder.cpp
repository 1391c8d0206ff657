#include "platform/radios/trace/TraceRecorder.h"

#include "platform/foundation/objects/CocoaErrorCodes.h"
#include "platform/foundation/process/ProcessEnd.h"
#include "platform/foundation/text/Characters.h"
#include "platform/radios/trace/Trace.h"

#include <InkoraKit/platform/JSONSerialization.h>
#include <InkoraKit/platform/RunLoop.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <utility>

namespace InkoraKit {
namespace {

constexpr double longestInMemory = 1.0;  // seconds

TraceRecorder* recording = nullptr;

void endRecording() {
    if (recording) recording->end();
}

NSError notWritable(const std::string& path) {
    return NSError(NSCocoaErrorDomain, fileWriteUnknownError,
                   {{NSLocalizedDescriptionKey, path + ": " + std::strerror(errno) + '.'}});
}

/// Whether a text has a device address at the position, in any of the forms 01:23:45:67:89:AB,
/// 01-23-45-67-89-AB and 01_23_45_67_89_AB.
bool isAddress(std::string_view text) {
    for (std::size_t i = 0; i < 17; ++i) {
        const bool isBetween = i % 3 == 2;
        if (isBetween ? text[i] != text[2] : !isHexDigit(text[i])) return false;
    }
    return std::string_view(":-_").find(text[2]) != std::string_view::npos;
}

}  // namespace

TraceRecorder::TraceRecorder(const std::string& path, RadioTrace::Identifiers identifiers)
    : path_(path), identifiers_(identifiers) {
    endRecording();  // it may be of the same file
    file_ = std::fopen(path.c_str(), "wb");
    if (!file_) throw notWritable(path);
    begin();
    writeLine({{"inkoraTrace", traceVersion}});
    flush();
    if (error_) {
        std::fclose(file_);
        throw NSError(*error_);
    }
    recording = this;
    atProcessEnd(endRecording);
}

TraceRecorder::~TraceRecorder() {
    end();
}

void TraceRecorder::begin() {
    began_ = RunLoop::main().now();
    last_ = 0;
}

Dictionary TraceRecorder::stamped() {
    // The microsecond is as much as anybody can tell. A clock may be replaced by an earlier one.
    const double elapsed = RunLoop::main().now() - began_;
    last_ = std::max(last_, std::round(elapsed * 1e6) / 1e6);
    return {{"at", last_}};
}

void TraceRecorder::write(std::string_view kind, std::string_view name, const UUID* peripheral,
                          Fields fields) {
    if (!isRecording()) return;
    Dictionary members = stamped();
    members.reserve(3 + fields.size());
    members.set(kind, name);
    if (peripheral) members.set("peripheral", shown(*peripheral));
    for (const auto& [key, value] : fields)
        if (value.hasValue()) members.set(key, value);
    writeLine(members);
    const bool isFrequent = name == "notified" || name == "sighted";
    if (!isFrequent || RunLoop::main().now() >= flushed_ + longestInMemory) flush();
}

void TraceRecorder::end() {
    if (!isRecording()) return;
    Dictionary members = stamped();
    members.set("end", true);
    writeLine(members);
    flush();
    std::fclose(std::exchange(file_, nullptr));
    if (recording == this) recording = nullptr;
}

void TraceRecorder::writeLine(const Dictionary& members) {
    using enum JSONSerialization::WritingOptions;
    const std::string line = JSONSerialization::text(members, withoutEscapingSlashes) + '\n';
    std::fwrite(line.data(), 1, line.size(), file_);
}

void TraceRecorder::flush() {
    flushed_ = RunLoop::main().now();
    std::fflush(file_);
    if (std::ferror(file_) && !error_) error_ = notWritable(path_);
}

Any TraceRecorder::shown(const UUID& peripheral) {
    if (identifiers_ == RadioTrace::Identifiers::full) return peripheral.uuidString();
    const auto next = static_cast<std::uint32_t>(numbers_.size() + 1);
    return numbers_.try_emplace(peripheral, next).first->second;
}

std::string TraceRecorder::masked(std::string text) const {
    if (Any(text).isObject())  // no UTF-8, which no JSON text can hold
        std::replace_if(
            text.begin(), text.end(), [](char byte) { return (byte & 0x80) != 0; }, '?');
    if (identifiers_ == RadioTrace::Identifiers::full) return text;
    for (std::size_t i = 0; i + 17 <= text.size(); ++i) {
        if (!isAddress(std::string_view(text).substr(i, 17))) continue;
        for (std::size_t j = 0; j < 15; ++j)
            if (j % 3 != 2) text[i + j] = 'x';
    }
    return text;
}

}  // namespace InkoraKit
