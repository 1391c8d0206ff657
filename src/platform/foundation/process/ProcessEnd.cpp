#include "platform/foundation/process/ProcessEnd.h"

#include <algorithm>
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
    auto& all = functions();
    if (std::find(all.begin(), all.end(), function) != all.end()) return;
    if (all.empty()) std::atexit(runProcessEnd);
    all.push_back(function);
}

void runProcessEnd() noexcept {
    for (const auto function : std::exchange(functions(), {})) function();
}

}  // namespace InkoraKit
