#include "platform/bluetooth/Misuse.h"

#include <cstdio>

namespace InkoraKit {

void reportMisuse(const std::string& what) {
    std::fprintf(stderr, "API MISUSE: %s\n", what.c_str());
}

}  // namespace InkoraKit
