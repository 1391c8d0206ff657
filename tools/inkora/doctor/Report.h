#pragma once

#include "doctor/Finding.h"

#include <string>

namespace InkoraTool {

/// For people: state, name, text, and below it the remedy. No line but a remedy's has more than 80
/// columns.
std::string textOf(const Finding& finding);

/// For people: what it all comes to.
std::string summaryOf(const Findings& findings);

/// For programs: a JSON object with the member `usable`, and `checks`, an array of all findings.
std::string jsonOf(const Findings& findings);

/// Whether nothing stands between this machine and a pen.
bool isUsable(const Findings& findings);

}  // namespace InkoraTool
