#pragma once

#include <InkoraKit/Export.h>

#include <optional>

namespace InkoraKit {

/// Something besides blocks and timers that a run loop waits for: a file descriptor, a deadline, or
/// both. The loop asks for both anew before each wait, and when told to (RunLoop::sourcesChanged).
class INKORA_EXPORT RunLoopSource {
public:
    /// What a descriptor is watched for.
    enum class Interest {
        none,      ///< nothing: the source waits for its deadline alone
        readable,  ///< something to read, or an end of file
        writable,  ///< room to write
        both       ///< either
    };

    virtual ~RunLoopSource() = default;

    /// The descriptor to watch; it stays the same for as long as the source is added.
    virtual int descriptor() const = 0;
    /// What it is watched for now.
    virtual Interest interest() const { return Interest::readable; }

    /// When `service` is to be called even if the descriptor stays quiet, on the loop's clock.
    virtual std::optional<double> deadline() const { return std::nullopt; }

    /// The descriptor is ready or the deadline has come. Until it returns, the source is not served
    /// by a loop that runs inside it either, and blocks wait.
    virtual void service() = 0;
};

}  // namespace InkoraKit
