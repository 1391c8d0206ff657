#pragma once

#include <InkoraKit/InkoraProtocols.h>
#include <InkoraKit/platform/RunLoop.h>

#include <exception>
#include <memory>

namespace InkoraKit {

/// Calls the host's receiver, if there is one, with arguments of the call's own, which last
/// whatever the host does meanwhile. What the receiver throws must not take the rest of the step
/// along that is being told of: it leaves through the run loop, behind it.
template <class... Parameters, class... Arguments>
void tell(const std::shared_ptr<InkoraProtocols>& host,
          void (InkoraProtocols::*call)(Parameters...), Arguments... arguments) {
    if (!host) return;
    try {
        ((*host).*call)(arguments...);
    } catch (...) {
        RunLoop::main().post(
            [thrown = std::current_exception()] { std::rethrow_exception(thrown); });
    }
}

}  // namespace InkoraKit
