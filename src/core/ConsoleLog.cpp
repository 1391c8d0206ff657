#include <InkoraKit/InkoraConstants.h>
#include <InkoraKit/platform/NSObject.h>

#include <cstdio>

namespace InkoraKit {

const bool InkoraConstants::LOG = INKORA_LOG;

bool NSObject::isConsoleLogOn() noexcept {
    return InkoraConstants::LOG;
}

void NSObject::writeLineToConsole(std::string_view line) {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
}

}  // namespace InkoraKit
