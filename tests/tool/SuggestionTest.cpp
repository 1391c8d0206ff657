#include "commandline/Suggestion.h"

#include <gtest/gtest.h>

#include <iterator>
#include <sstream>
#include <string>

namespace InkoraTool {
namespace {

TEST(Suggestion, IsTheNearestKnownWord) {
    const Command program = {
        .name = "inkora", .help = "", .commands = {watchCommand(), infoCommand(), jsonCommand()}};
    const struct {
        const char* line;
        const char* meant;  // empty for nothing
    } cases[] = {{"wach", "watch"},
                 {"WATHC", "watch"},
                 {"watches", "watch"},
                 {"bogus", ""},
                 {"x", ""},
                 {"--verison", "--version"},
                 {"--help wach", "watch"},
                 {"watch --cuont 3", "--count"},
                 {"watch --cuont=3", "--count"},
                 {"watch -count 3", "--count"},
                 {"watch --with", "--with-addresses"},
                 {"watch --fro 3", "--for"},
                 {"watch --once", ""},
                 {"watch --count watc --jsn", "--json"},
                 {"watch --radio virtaul", "virtual"},
                 {"watch --radio=reply:x", "replay:"},
                 {"watch --radio=replay:virtal", ""},
                 {"info --count 3", ""},
                 {"json gte f", "get"},
                 {"json get gte -1 --rwa", "--raw"},
                 {"json get -- --rwa", ""},
                 {"json get raw a b", ""}};
    for (const auto& [line, meant] : cases) {
        std::istringstream typed(line);
        const auto found = suggestion(program, {std::istream_iterator<std::string>(typed), {}});
        EXPECT_EQ(found ? found->meant : "", meant) << line;
    }
}

}  // namespace
}  // namespace InkoraTool
