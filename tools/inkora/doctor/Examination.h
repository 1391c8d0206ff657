#pragma once

#include "ExitStatus.h"
#include "doctor/Finding.h"
#include "doctor/Waiting.h"

#include <functional>
#include <optional>

namespace InkoraTool {

/// Looks at all that a pen needs of this machine, in the order in which one thing needs the other:
/// from the system bus to a pen's first value. It changes nothing, and leaves neither a scan nor a
/// link behind.
/// @param listening  seconds to hear what is in the air
/// @param tell  is called with each finding, at once
/// @return `success` where a value of a pen was read, what an earlier fault means, or `interrupted`
ExitStatus examine(const Waiting& waiting, double listening,
                   const std::function<void(const Finding&)>& tell);

/// What keeps Bluetooth from being used, as far as a look can tell that takes a second or two and
/// does not listen; absent where it shows no fault.
std::optional<Finding> findFaultOfBluetooth();

}  // namespace InkoraTool
