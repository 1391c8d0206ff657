#include "platform/foundation/process/ProcessEnd.h"

#include <cstdlib>
#include <utility>
#include <vector>

namespace InkoraKit {
namespace {

std::vector<void (*)()>& functions() {
    static auto* const list = new std::vector<void (*)()>;  // never destroyed: used at the very end
    return *list;
}

}  // namespace

void atProcessEnd(void (*function)()) {
    if (functions().empty()) std::atexit(runProcessEnd);
    functions().push_back(function);
}

void runProcessEnd() noexcept {
    for (const auto function : std::exchange(functions(), {})) function();
}

}  // namespace InkoraKit
