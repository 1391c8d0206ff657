#pragma once

#include <InkoraKit/platform/RunLoop.h>

#include <exception>

namespace InkoraKit {

/// Runs a handler that the C library calls, through whose frames an exception must not unwind: it
/// leaves through the run loop.
template <class Function>
void guarded(Function function) noexcept {
    try {
        function();
    } catch (...) {
        RunLoop::main().post(
            [thrown = std::current_exception()] { std::rethrow_exception(thrown); });
    }
}

}  // namespace InkoraKit
