#include "platform/foundation/process/Fatal.h"

#include "platform/foundation/process/ProcessEnd.h"

#include <cstdio>
#include <cstdlib>

namespace InkoraKit {

void fatalError(std::string_view message) {
    std::fprintf(stderr, "Fatal error: %.*s\n", static_cast<int>(message.size()), message.data());
    runProcessEnd();
    std::abort();
}

}  // namespace InkoraKit
