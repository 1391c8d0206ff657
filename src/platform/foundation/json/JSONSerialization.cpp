#include <InkoraKit/platform/JSONSerialization.h>

#include "platform/foundation/json/JSONReader.h"
#include "platform/foundation/json/JSONWriter.h"
#include "platform/foundation/objects/CocoaErrorCodes.h"
#include "platform/foundation/text/TextEncoding.h"

#include <algorithm>

namespace InkoraKit {

namespace {

NSError readingError(const JSONReader::Fault& fault, std::string_view text,
                     std::size_t originalOffset) {
    if (text.empty())
        return NSError(NSCocoaErrorDomain, propertyListReadCorruptError,
                       {{NSDebugDescriptionErrorKey, fault.reason}});
    const std::string_view before = text.substr(0, fault.offset);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const std::size_t column = before.size() - (before.rfind('\n') + 1);  // npos + 1 is 0
    return NSError(NSCocoaErrorDomain, propertyListReadCorruptError,
                   {{NSDebugDescriptionErrorKey, std::string(fault.reason) + " around line " +
                                                     std::to_string(line) + ", column " +
                                                     std::to_string(column) + "."},
                    {NSJSONSerializationErrorIndexKey, originalOffset}});
}

NSError writingError(const std::string& reason) {
    return NSError(NSCocoaErrorDomain, propertyListReadCorruptError,
                   {{NSDebugDescriptionErrorKey, reason}});
}

Any read(std::string_view text, std::size_t markSize, JSONSerialization::ReadingOptions options,
         DetectedText detected) {
    const auto allowFragments =
        static_cast<std::uint32_t>(JSONSerialization::ReadingOptions::allowFragments);
    JSONReader reader(text);
    Any result;
    if (!reader.read((static_cast<std::uint32_t>(options) & allowFragments) != 0, result)) {
        const JSONReader::Fault& fault = reader.fault();
        const std::size_t offset = detected.encoding == StringEncoding::utf8
                                       ? fault.offset + markSize
                                       : originalOffset(text, fault.offset, detected);
        throw readingError(fault, text, offset);
    }
    return result;
}

}  // namespace

Any JSONSerialization::jsonObject(const Data& data, ReadingOptions options) {
    return jsonObject({reinterpret_cast<const char*>(data.data()), data.size()}, options);
}

Any JSONSerialization::jsonObject(std::string_view text, ReadingOptions options) {
    const std::span bytes(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    const DetectedText detected = detectEncoding(bytes);
    if (detected.encoding == StringEncoding::utf8)
        return read(text.substr(detected.markSize), detected.markSize, options, detected);
    const auto converted = utf8FromDetected(bytes, detected);
    if (!converted) throw readingError({"Unable to convert data to string", 0}, text, 0);
    return read(*converted, detected.markSize, options, detected);
}

bool JSONSerialization::isValidJSONObject(const Any& object) {
    std::string ignored;
    return JSONWriter(WritingOptions::none).write(object, ignored);
}

Data JSONSerialization::data(const Any& object, WritingOptions options) {
    return Data::fromText(text(object, options));
}

std::string JSONSerialization::text(const Any& object, WritingOptions options) {
    std::string result;
    JSONWriter writer(options);
    if (!writer.write(object, result)) throw writingError(writer.fault());
    return result;
}

}  // namespace InkoraKit
