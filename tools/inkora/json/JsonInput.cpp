#include "json/JsonInput.h"

#include "Failure.h"
#include "File.h"

using namespace InkoraKit;

namespace InkoraTool {

JSON jsonIn(std::string_view text, const std::string& file, const TextStart& start) {
    try {
        return JSONSerialization::jsonObject(text,
                                             JSONSerialization::ReadingOptions::allowFragments);
    } catch (const NSError& error) {
        throw Failure(ExitStatus::malformed, jsonTextFault(shownName(file), text, error, start));
    }
}

JSON readJson(const std::string& file) {
    return jsonIn(readFile(file), file);
}

}  // namespace InkoraTool
