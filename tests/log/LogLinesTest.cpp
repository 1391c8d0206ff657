#include "platform/bus/Properties.h"
#include "support/PenScript.h"

#include <gtest/gtest.h>

namespace InkoraKit {
namespace {

/// With the lines that the kit, compiled with its console log on, writes to standard output.
class LogScript final : public PenScript {
public:
    LogScript() {
        transcript.goesToStandardOutput = true;
        testing::internal::CaptureStdout();
    }
    ~LogScript() override {
        transcript.goesToStandardOutput = false;
        testing::internal::GetCapturedStdout();
    }

protected:
    std::string happened() override {
        transcript.take();  // the last facts
        std::istringstream lines(testing::internal::GetCapturedStdout());
        testing::internal::CaptureStdout();
        std::string text;
        for (std::string line; std::getline(lines, line);)
            text += (line.starts_with(' ') ? "" : "  log: ") + line + '\n';
        return text;
    }
};

TEST(LogLinesTest, EveryStepWritesItsLine) {
    expectTranscripts(INKORA_TESTS "/log/transcripts",
                      [] { return std::make_unique<LogScript>(); });
}

TEST(LogLinesTest, APropertyOfAnotherTypeIsToldOf) {
    testing::internal::CaptureStdout();
    const bool* const found = find<bool>({{"Powered", std::string("yes")}}, "Powered");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "D-Bus: Powered has a type that it should not have\n");
    EXPECT_EQ(found, nullptr);
}

}  // namespace
}  // namespace InkoraKit
