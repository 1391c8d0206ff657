#include "pen/Format.h"

#include "pen/JsonFormat.h"
#include "pen/TextFormat.h"
#include "terminal/Terminal.h"

namespace InkoraTool {

std::unique_ptr<Format> makeFormat(bool json) {
    if (json) return std::make_unique<JsonFormat>();
    return std::make_unique<TextFormat>(coloursOfOutput());
}

}  // namespace InkoraTool
