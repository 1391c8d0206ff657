#pragma once

#include "support/RadioScript.h"

namespace InkoraKit {

class TranscribedHandler;
class TranscribedHost;

/// What a fatal stop is where this is linked: it can be looked at, and the process goes on.
struct FatalStop {
    std::string message;
};

/// What a fatal stop has to be accounted for by, so that it does not end the process.
enum class Accounting {
    byTranscript,  ///< where it stands like all that happens
    byScript,      ///< a line that may lead to it
    none,          ///< to see that it is noticed
};

/// A script for the engine: radio events, and what a host does. It ends with a fatal stop. The
/// host's words:
///
///     start  stop  publish  unpublish  battery  proximity  info
///     scanning  connecting  linked  paired           all that leads there from the beginning
///     forget                    the host lets go of its receiver; leave: of the handler
///     throw                     an exception, for use inside of what the host hears
///
/// And in transcripts only, since no host can do it:
///
///     simulate                  timers and draws stand in for the radio
///     draw n                    what every draw from now on gives
///     state n                   stores a state of the engine
///     capture-after S           stores seconds
///     perform STEP              runs a step by name
class PenScript : public RadioScript {
public:
    explicit PenScript(Accounting rule = Accounting::byTranscript);
    ~PenScript() override;

protected:
    bool playLine(const std::string& line) override;

private:
    const Accounting accounting;
    std::shared_ptr<TranscribedHost> host;
    std::shared_ptr<TranscribedHandler> handler;
    std::uint32_t drawn = 0;
};

}  // namespace InkoraKit
