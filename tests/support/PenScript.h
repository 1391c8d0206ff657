#pragma once

#include "support/RadioScript.h"

namespace InkoraKit {

class TranscribedHandler;
class TranscribedHost;

/// Whether a script can account for a fatal stop, or none is taken, to see that it is noticed.
enum class Accounting { byScript, none };

/// A script for the engine: radio events, and what a host does. A fatal stop that nothing in the
/// script accounts for ends the process. The host's words:
///
///     start  stop  publish  unpublish  battery  proximity  info
///     scanning  connecting  linked  paired           all that leads there from the beginning
///     forget                    the host lets go of its receiver; leave: of the handler
///     inside EVENT LINE         does LINE when its receiver hears EVENT the next time
///     throw                     an exception, for use inside a callback
///     simulate                  timers and draws stand in for the radio
///     draw n                    what every draw from now on gives
///     state n                   stores a state of the engine
///     capture-after n           n tenths of a second
///     perform STEP              runs a step by name
class PenScript : public RadioScript {
public:
    explicit PenScript(Accounting rule = Accounting::byScript);
    ~PenScript() override;

protected:
    bool playLine(const std::string& line) override;

private:
    void doInside(const std::string& event);

    const Accounting accounting;
    std::shared_ptr<TranscribedHost> host;
    std::shared_ptr<TranscribedHandler> handler;
    std::uint32_t drawn = 0;
    std::map<std::string, std::string> inside;  // what the host does, by the event that it hears
};

}  // namespace InkoraKit
