#include <InkoraKit/InkoraGlobalData.h>
#include <InkoraKit/platform/JSONSerialization.h>

#include "platform/foundation/process/ConsoleLine.h"
#include "platform/foundation/text/TextEncoding.h"

namespace InkoraKit {

std::optional<Dictionary> InkoraGlobalData::convertToDictionary(std::string_view text) {
    if (!isUtf8(text)) return std::nullopt;
    try {
        return JSONSerialization::jsonObject(text).as<Dictionary>();
    } catch (const NSError& error) {
        printConsoleLine(error.localizedDescription());
        return std::nullopt;
    }
}

}  // namespace InkoraKit
