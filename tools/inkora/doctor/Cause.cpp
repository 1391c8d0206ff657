#include "doctor/Cause.h"

#include "doctor/Examination.h"

#include <cstdio>

namespace InkoraTool {

void tellCauseOfNoBluetooth() {
    if (const auto fault = findFaultOfBluetooth())
        std::fprintf(stderr, "inkora: %s: %s; inkora doctor says what helps\n", fault->name.c_str(),
                     fault->text.c_str());
}

}  // namespace InkoraTool
