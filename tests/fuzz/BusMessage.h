#pragma once

#include <string_view>

namespace InkoraKit {

/// Makes a D-Bus message of a script and reads it as the BlueZ radio does. The script's first line
/// says what is read (t text, T texts, b bytes, p properties, i interfaces, o objects). Each other
/// opens a container, by its kind (a, e, r, v) and the signature of its contents, or closes one
/// (.), or is a value behind its type. Ends the process when what does not fit is read all the
/// same. Answers whether all of it fitted; a script that makes no message does not.
bool readBusMessage(std::string_view script);

}  // namespace InkoraKit
