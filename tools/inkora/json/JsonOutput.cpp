#include "json/JsonOutput.h"

#include "Failure.h"
#include "json/JsonTextFault.h"
#include "terminal/Output.h"

using namespace InkoraKit;

namespace InkoraTool {

std::string jsonText(const JSON& value, JSONSerialization::WritingOptions options) {
    using enum JSONSerialization::WritingOptions;
    try {
        return JSONSerialization::text(value.object(),
                                       options | allowFragments | withoutEscapingSlashes);
    } catch (const NSError& error) {
        throw Failure(ExitStatus::failure, "the result cannot be written: " + reasonOf(error));
    }
}

bool printText(const std::string& text) {
    Output output;
    const Output::Outcome outcome = output.line(text);
    if (outcome == Output::Outcome::failed)
        throw Failure(ExitStatus::failure, "standard output: " + output.failure());
    return outcome == Output::Outcome::written;
}

}  // namespace InkoraTool
