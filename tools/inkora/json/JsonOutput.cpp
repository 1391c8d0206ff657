#include "json/JsonOutput.h"

#include "Failure.h"
#include "json/JsonTextFault.h"

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

}  // namespace InkoraTool
