#pragma once

#include <InkoraKit/InkoraErrorCodes.h>

namespace InkoraTool {

/// What the process ends with. A failure that the kit reports has the code of its error.
enum class ExitStatus : int {
    success = 0,
    failure = 1,  ///< the output cannot be written, a replay parted from its trace, or what nobody
                  ///< foresaw
    usage = 2,
    unreadable = 3,    ///< a file
    malformed = 4,     ///< a text that is no JSON document, palette or script
    noSuchPlace = 5,   ///< in a JSON document
    notMergeable = 6,  ///< two JSON documents
    noBluetooth = InkoraKit::InkoraErrorCodes::inSufficientResources,
    notConnected = InkoraKit::InkoraErrorCodes::deviceFailedToConnect,
    noPen = InkoraKit::InkoraErrorCodes::deviceConnectionTimeout,
    interrupted = 130,  ///< before there was a result; as shells show an end by SIGINT
};

}  // namespace InkoraTool
