#include "json/JsonOperands.h"

namespace InkoraTool {

// CLI11 (2.1) splits operands in brackets at their commas, and looks for options behind "--", once
// an operand has got as many as it needs. So this one needs more than there can be, and to get
// fewer is no mistake.
CLI::Option* addJsonOperands(CLI::App& command, const std::string& name,
                             const std::string& description,
                             const std::function<void(std::vector<std::string>)>& take) {
    constexpr int any = CLI::detail::expected_max_vector_size;
    return command
        .add_option(
            name,
            [take](const std::vector<std::string>& operands) {
                take(operands);
                return true;
            },
            description)
        ->expected(any, any)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->option_text("...");
}

}  // namespace InkoraTool
