#pragma once

#include <InkoraKit/InkoraHandler.h>
#include <InkoraKit/platform/RunLoop.h>

#include <exception>

namespace InkoraKit {

// What the receiver throws must not take the rest of the step along that is being told of: it
// leaves through the run loop, behind it.
template <class... Parameters, class... Arguments>
void InkoraHandler::tell(void (InkoraProtocols::*call)(Parameters...),
                         Arguments... arguments) const {
    const auto host = delegate();
    if (!host) return;
    try {
        (*host.*call)(arguments...);
    } catch (...) {
        RunLoop::main().post(
            [thrown = std::current_exception()] { std::rethrow_exception(thrown); });
    }
}

}  // namespace InkoraKit
