#pragma once

namespace InkoraKit {

/// Has the function called once, however often it is asked for, when the process ends: by `exit`,
/// by the return of `main`, or by a fatal stop of the kit. For what the system would not put right
/// by itself. Objects with static storage may have been destroyed by then.
void atProcessEnd(void (*function)());

/// Calls these functions, each once.
void runProcessEnd() noexcept;

}  // namespace InkoraKit
