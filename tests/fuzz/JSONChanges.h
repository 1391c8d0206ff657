#pragma once

#include <string_view>

namespace InkoraKit {

/// Plays a script on four `JSON` variables, and beside them on plain trees that share nothing. Ends
/// the process at the first step after which they differ. One step a line; other lines do nothing:
///
///     parse V TEXT         V = the value of the text
///     put V PATH W PATH    V[…] = W[…], of a path such as /pens/0/name; / is the value itself
///     merge V PATH W       V[…].merge(W)
///     detach V             V = V.detached()
///     erase V /KEY         erases the member from the dictionary in V
///     loop V / W           V = W, and V[key] = a member, while going through the members of V
void runJSONChanges(std::string_view script);

}  // namespace InkoraKit
