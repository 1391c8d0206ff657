#pragma once

#include <string_view>
#include <utility>

namespace InkoraKit {

/// Writes "Fatal error: " and the message to standard error, lets go of what must not outlive the
/// process (see ProcessEnd.h) and aborts it. For broken contracts inside the kit, where going on
/// would mean making something up.
[[noreturn]] void fatalError(std::string_view message);

/// The optional or pointer itself, which must hold something here; an empty one is fatal.
template <class Optional>
Optional&& unwrap(Optional&& optional) {
    if (!optional) fatalError("unexpectedly found nil while unwrapping an Optional value");
    return std::forward<Optional>(optional);
}

}  // namespace InkoraKit
