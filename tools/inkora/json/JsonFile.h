#pragma once

#include <string>
#include <string_view>

namespace InkoraTool {

/// Gives a regular file new contents, all at once: whatever happens, there is the old file or the
/// new one. Links to the file by name are followed; its permissions are kept.
/// @throws JsonFailure when that cannot be; the file is then as it was
void replaceFile(const std::string& file, std::string_view contents);

}  // namespace InkoraTool
