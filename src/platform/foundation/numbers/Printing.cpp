#include <InkoraKit/platform/Printing.h>

#include "platform/foundation/numbers/NumberText.h"

namespace InkoraKit {

namespace {

/// The text of a floating-point value, given a fraction where digits alone would look like an
/// integer.
template <class Real>
std::string printedReal(Real value, Real largestPlain) {
    std::string text;
    appendShortest(text, value, largestPlain);
    if (text.find_first_not_of("-0123456789") == std::string::npos) text += ".0";
    return text;
}

}  // namespace

std::string printed(std::string_view text) {
    return std::string(text);
}

std::string printed(double value) {
    return printedReal(value, 0x1p53);
}

std::string printed(float value) {
    return printedReal(value, 0x1p24f);
}

}  // namespace InkoraKit
