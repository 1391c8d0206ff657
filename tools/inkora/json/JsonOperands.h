#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <string>
#include <vector>

namespace InkoraTool {

/// Lets a command take any number of operands, each as it stands: `[1,2]` and `{}` are one operand
/// each. No operand added after this one gets anything by itself.
/// @param take is given them all, if there are any
CLI::Option* addJsonOperands(CLI::App& command, const std::string& name,
                             const std::string& description,
                             const std::function<void(std::vector<std::string>)>& take);

}  // namespace InkoraTool
