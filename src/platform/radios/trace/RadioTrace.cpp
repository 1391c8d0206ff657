#include "platform/radios/trace/RecordingRadio.h"
#include "platform/radios/trace/TraceRecorder.h"

#include <utility>

namespace InkoraKit {

std::shared_ptr<RadioTrace> RadioTrace::record(const std::string& path, Identifiers identifiers) {
    const auto recorder = std::make_shared<TraceRecorder>(path, identifiers);
    wrapRadios([recorder, isFirst = true](std::unique_ptr<Radio> radio) mutable {
        if (!std::exchange(isFirst, false) || !recorder->isRecording()) return radio;
        return std::unique_ptr<Radio>(new RecordingRadio(std::move(radio), recorder));
    });
    return std::shared_ptr<RadioTrace>(new RadioTrace(recorder));
}

RadioTrace::RadioTrace(std::shared_ptr<TraceRecorder> recorder) : recorder_(std::move(recorder)) {}

RadioTrace::~RadioTrace() {
    end();
}

void RadioTrace::end() {
    recorder_->end();
}

std::optional<NSError> RadioTrace::error() const {
    return recorder_->error();
}

}  // namespace InkoraKit
