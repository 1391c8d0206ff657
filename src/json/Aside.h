#pragma once

#include <InkoraKit/JSON.h>

#include <cstdint>

namespace InkoraKit {

struct [[gnu::visibility("hidden")]] JSON::Aside {
    Any contents;           // what the value is
    std::int64_t code = 0;  // of the error; 0 without one
    JSONKey step = 0;       // that failed
    Any formerArray;        // the array that the value was last; or absent
    mutable Any shown;      // the contents, each part as a `JSON` made of it is; or absent so far
};

}  // namespace InkoraKit
