#pragma once

#include <string_view>

namespace InkoraKit {

/// Plays a script on four `JSON` variables, and beside them on plain trees that share nothing. Ends
/// the process at the first step after which they differ. One step a line; other lines do nothing:
///
///     parse V TEXT         V = the value of the text
///     many V N             V = a dictionary of N members, at most 99, that was read
///     copy V W             V = W
///     take V W PATH        V = what W holds at the path, such as /pens/0/name
///     put V PATH W         V[…][…] = W
///     path V PATH W        V[{…}] = W
///     part V PATH W PATH   V[…] = W[…]
///     merge V W            V.merge(W)
///     join V PATH W        V[…].merge(W)
///     detach V             V = V.detached()
///     list V W X           V = [W, X]
///     append V W           appends W to the array in V
///     erase V KEY          erases the member from the dictionary in V
///     loop V W             V = W, and V[key] = a member, while going through the members of V
void runJSONChanges(std::string_view script);

}  // namespace InkoraKit
