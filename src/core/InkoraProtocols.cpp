#include <InkoraKit/InkoraProtocols.h>

namespace InkoraKit {

InkoraProtocols::~InkoraProtocols() = default;

}  // namespace InkoraKit
