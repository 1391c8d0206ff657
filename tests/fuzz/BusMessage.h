#pragma once

#include <string_view>

namespace InkoraKit {

/// Makes a D-Bus message of a script and reads it as the BlueZ radio does. The script has a line
/// for the message's signature, one for what is read (t text, T texts, b bytes, p properties, i
/// interfaces, o objects), then one for each value in it: that of an array is its length, that of a
/// variant its signature. Ends the process when what does not fit is read all the same. Answers
/// whether all of it fitted; a script that makes no message does not.
bool readBusMessage(std::string_view script);

}  // namespace InkoraKit
