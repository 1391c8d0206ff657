#pragma once

#include <string_view>

namespace InkoraKit {

/// Reads the bytes as JSON text, writes what they hold in every form, and reads that again. Ends
/// the process unless all of it agrees, with itself and with a second, plain reader.
void checkJSONText(std::string_view bytes);

}  // namespace InkoraKit
