#include <InkoraKit/platform/NSObject.h>

namespace InkoraKit {

bool NSObject::performSelector(std::string_view selector) {
    const Method method = methodForSelector(selector);
    if (!method) return false;
    (this->*method)();
    return true;
}

}  // namespace InkoraKit
