#include "json/JsonInput.h"

#include "Failure.h"
#include "File.h"
#include "json/JsonTextFault.h"

using namespace InkoraKit;

namespace InkoraTool {

JSON readJson(const std::string& file) {
    const std::string text = readFile(file);
    try {
        return JSONSerialization::jsonObject(text,
                                             JSONSerialization::ReadingOptions::allowFragments);
    } catch (const NSError& error) {
        throw Failure(ExitStatus::malformed, jsonTextFault(shownName(file), text, error));
    }
}

}  // namespace InkoraTool
