#include "terminal/ReaderSource.h"

#include <InkoraKit/platform/RunLoop.h>
#include <unistd.h>

#include <utility>

using namespace InkoraKit;

namespace InkoraTool {

ReaderSource::ReaderSource(std::function<void()> readerLeft) : readerLeft_(std::move(readerLeft)) {
    RunLoop::main().addSource(*this);
}

ReaderSource::~ReaderSource() {
    if (isWatching_) RunLoop::main().removeSource(*this);
}

int ReaderSource::descriptor() const {
    return STDOUT_FILENO;
}

void ReaderSource::service() {
    // Once: the error stays, and would be told again and again.
    RunLoop::main().removeSource(*this);
    isWatching_ = false;
    readerLeft_();
}

}  // namespace InkoraTool
