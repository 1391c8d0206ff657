#include "Failure.h"
#include "peripheral/Instruction.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace InkoraTool {
namespace {

/// Writes down what it is told to do.
class WritingPen final : public PenControls {
public:
    void capture(const std::optional<Colour>& colour, std::int64_t count,
                 double interval) override {
        text << (colour ? hexText(*colour) : "random") << ' ' << count << ' ' << interval;
    }
    void tell(const InkoraKit::Data& value) override {
        text << "tell " << value.hexEncodedString();
    }
    void setBattery(std::uint8_t percent) override { text << "battery " << int{percent}; }
    void setName(const std::string& name) override { text << "name " << name; }
    void drop() override { text << "drop"; }
    void setAnswering(bool isAnswering) override { text << "answering " << isAnswering; }
    void setVisible(bool isVisible) override { text << "visible " << isVisible; }
    void quit() override { text << "quit"; }

    std::ostringstream text;
};

std::string outcomeOf(const std::string& line) {
    WritingPen pen;
    try {
        instructionOf(line)(pen);
    } catch (const Failure& failure) {
        return std::string("! ") + failure.what();
    }
    return pen.text.str();
}

TEST(InstructionTest, LinesAndWhatThePenDoes) {
    const struct {
        std::string line;
        std::string outcome;
    } cases[] = {
        {"#FF8000", "#FF8000 1 0"},
        {"#f80 3", "#FF8800 3 0"},
        {"  DarkOrange\t2  0.25\r", "#FF8C00 2 0.25"},
        {"random 500", "random 500 0"},
        {"red 2 0", "#FF0000 2 0"},
        {"battery 0", "battery 0"},
        {"name  Mein InkoraPen ", "name Mein InkoraPen"},
        {"drop", "drop"},
        {"silent", "answering 0"},
        {"answer", "answering 1"},
        {"hide", "visible 0"},
        {"show", "visible 1"},
        {"quit", "quit"},
        {"raw", "tell "},
        {"raw 01fF80", "tell 01ff80"},
        {"raw " + std::string(1024, '0'), "tell " + std::string(1024, '0')},
        {"", ""},
        {"# a remark", ""},
        {"#", ""},
        {"oragne", "! 'oragne' is neither a colour nor anything else that a pen can do"},
        {"#FF80", "! '#FF80' is neither a colour nor anything else that a pen can do"},
        {"\x1b[2J", "! '\uFFFD[2J' is neither a colour nor anything else that a pen can do"},
        {"red 0", "! '0' is not a whole number from 1 to 1000000000"},
        {"red 1x", "! '1x' is not a whole number from 1 to 1000000000"},
        {"red 2 -1", "! '-1' is not a number of seconds"},
        {"red 2 nan", "! 'nan' is not a number of seconds"},
        {"red 2 1 1", "! '1' is too much: a colour takes COUNT and SECONDS"},
        {"battery", "! '' is not a whole number from 0 to 100"},
        {"battery 101", "! '101' is not a whole number from 0 to 100"},
        {"name", "! a pen needs a name"},
        {"name \xff", "! '\uFFFD' is no name: it is not plain UTF-8"},
        {"drop it", "! 'drop' takes nothing behind it"},
        {"raw 1", "! 'raw' takes two hexadecimal digits a byte"},
        {"raw 0x", "! 'raw' takes two hexadecimal digits a byte"},
        {"raw " + std::string(1026, '0'), "! 'raw' takes no more than 512 bytes"},
    };
    for (const auto& each : cases) EXPECT_EQ(outcomeOf(each.line), each.outcome) << each.line;
}

}  // namespace
}  // namespace InkoraTool
