#pragma once

#include <string>

namespace InkoraKit {

/// A command came at a time when it cannot be carried out: one line on standard error.
void reportMisuse(const std::string& what);

}  // namespace InkoraKit
