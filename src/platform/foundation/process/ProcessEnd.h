#pragma once

namespace InkoraKit {

/// Has the function called when the process ends: by `exit`, by the return of `main`, or by a fatal
/// stop of the kit. For what the system would not put right by itself.
void atProcessEnd(void (*function)());

/// Calls these functions, each once.
void runProcessEnd() noexcept;

}  // namespace InkoraKit
