#include "Format.h"

#include "JsonFormat.h"
#include "Terminal.h"
#include "TextFormat.h"

namespace InkoraTool {

std::unique_ptr<Format> makeFormat(bool json) {
    if (json) return std::make_unique<JsonFormat>();
    return std::make_unique<TextFormat>(outputShowsTrueColour());
}

}  // namespace InkoraTool
