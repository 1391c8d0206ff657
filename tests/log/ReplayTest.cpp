#include <InkoraKit/InkoraKit.h>
#include <InkoraKit/platform/CBCentralManager.h>
#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/virtual/RadioTrace.h>
#include <InkoraKit/virtual/ReplayRadio.h>
#include <InkoraKit/virtual/VirtualClock.h>
#include <InkoraKit/virtual/VirtualPeripheral.h>
#include <InkoraKit/virtual/VirtualRadio.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <string>
#include <tuple>
#include <vector>

namespace InkoraKit {
namespace {

struct Handler : InkoraHandler {};

/// A host that notes what it hears, a word each.
struct Host : InkoraProtocols {
    void didConnectedToPeripheral() override { heard += "connected "; }
    void didDisconnectPeripheral() override { heard += "lost "; }
    void didPeripheralCaptured(const UIColor& colour) override {
        heard += std::to_string(std::lround(255 * colour.red())) + ' ';
    }
    std::string heard;
};

std::string contentsOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string replaced(const std::string& text, const char* pattern, const char* replacement) {
    return std::regex_replace(text, std::regex(pattern), replacement,
                              std::regex_constants::format_first_only);
}

/// Without times, and without the commands, which come sooner when nobody waits.
std::string eventsOf(const std::string& trace) {
    return std::regex_replace(trace, std::regex(R"(\{"at":[^,]*,("do"[^\n]*\n)?)"), "");
}

class ReplayTest : public testing::Test {
protected:
    ~ReplayTest() override {
        std::filesystem::remove(file);
        std::filesystem::remove(again);
    }

    /// Plays a trace to the engine, and records that.
    void replay(const std::string& trace) {
        std::ofstream(file, std::ios::binary) << trace;
        RunLoop::main().setClock(std::make_shared<VirtualClock>());
        testing::internal::CaptureStdout();
        {
            const auto recording = RadioTrace::record(again);
            const auto radio = ReplayRadio::install(file);
            radio->setWhenOver([] { RunLoop::main().stop(); });
            const auto host = std::make_shared<Host>();
            const std::shared_ptr<InkoraHandler> handler = std::make_shared<Handler>();
            handler->publishHandler(host);
            handler->startInkoraHandler();
            RunLoop::main().runFor(100);
            EXPECT_TRUE(radio->isOver());
            recording->end();
            heard = host->heard;
            departures.clear();
            for (const auto& departure : radio->departures())
                departures.push_back(departure.description());
        }
        RunLoop::main().runFor(0);
        log = std::regex_replace(testing::internal::GetCapturedStdout(), std::regex("0x[0-9a-f]+"),
                                 "an address of this process");
    }

    const std::string file =
        testing::TempDir() + testing::UnitTest::GetInstance()->current_test_info()->name();
    const std::string again = file + ".again";
    const std::string round = contentsOf(INKORA_TESTS "/log/traces/round.jsonl");
    std::string heard, log;
    std::vector<std::string> departures;
};

TEST_F(ReplayTest, WhatWasRecordedHappensAgainAndTheSameEachTime) {
    const std::map<std::string, std::string> heardByTrace = {
        {"round", "connected 255 255 0 "},
        {"lost", "connected 0 18 lost connected 18 1 lost connected 1 9 "},
    };
    for (const auto& [name, expected] : heardByTrace) {
        const std::string trace = contentsOf(INKORA_TESTS "/log/traces/" + name + ".jsonl");
        replay(trace);
        EXPECT_EQ(heard, expected) << name;
        EXPECT_EQ(departures, std::vector<std::string>()) << name;
        EXPECT_EQ(eventsOf(contentsOf(again)), eventsOf(trace)) << name;
        const std::string firstLog = log;
        replay(trace);
        EXPECT_EQ(log, firstLog) << name;
    }
}

TEST_F(ReplayTest, ItSaysWhereTheCommandsPart) {
    struct Case {
        const char* pattern;
        const char* replacement;
        std::vector<std::string> departures;  // the first ones; others may follow from them
    };
    const std::vector<Case> cases = {
        // One that does not come again, one that the trace lacks, another one, and none at all.
        {R"(\{[^\n]*"stopScan"\}\n)", "$&$&", {"line 6: recorded stopScan, given connect 1"}},
        {R"(\{[^\n]*"readRSSI"[^\n]*\n)",
         "",
         {"line 9: recorded discoverServices 1, given readRSSI 1"}},
        {R"(("do":"read"[^\n]*:)4)",
         "$019",
         {"line 15: recorded read 1 9, given read 1 4",
          "line 15: recorded read 1 9, given subscribe 1 4"}},
        {R"(("event":"connected"[^\n]*:)1)",
         "$012",
         {"line 9: recorded readRSSI 1, given nothing",
          "line 10: recorded discoverServices 1, given nothing"}},
    };
    for (const auto& [pattern, replacement, expected] : cases) {
        replay(replaced(round, pattern, replacement));
        departures.resize(std::min(departures.size(), expected.size()));
        EXPECT_EQ(departures, expected) << pattern;
    }
}

TEST_F(ReplayTest, WhatIsNoTraceIsRefusedWithItsLine) {
    struct Case {
        const char* pattern;
        const char* replacement;
        const char* fault;
    };
    const std::vector<Case> cases = {
        {"[^]*", "", "line 1: the file is empty."},
        {"^", "[1]\n", "line 1: no JSON object."},
        {R"(Trace":1)", R"(Trace":2)", "line 1: a trace of version 2, of which only 1 is known."},
        {"inkoraTrace", "trace", "line 1: this is no trace: the first line tells no version."},
        {R"(Trace":1)", R"(Trace":1,"more":1)", "line 1: there is a member too many."},
        {R"(("do":"scan"[^]{9})[^]*)", "$1", "line 4: the trace is cut off in this line."},
        {R"(("do":"scan"[^\n]*\n)[^]*)", "$1", "line 4: the trace is cut off before its end."},
        {R"("do":"scan"\}\n)", "$&\n", "line 4: no JSON object."},
        {"$", "{}\n", "line 27: something follows the end."},
        {R"("stopScan")", R"("stop")", "line 5: there is no command 'stop'."},
        {R"("event":"connected")", R"("event":"up")", "line 7: there is no event 'up'."},
        {R"("event":"connected")", R"("was":"connected")",
         "line 7: neither a command nor an event."},
        {R"((connected"),"peripheral":1)", "$1", "line 7: 'peripheral' is missing."},
        {R"((connected","peripheral":)1)", "$010",
         "line 7: 'peripheral' is not a number or an identifier."},
        {R"("at":[^,]*(,[^\n]*connected))", R"("at":0$1)", "line 7: earlier than the line before."},
        {R"("at":[^,]*(,[^\n]*connected))", R"("at":1e300$1)", "line 7: 'at' is not a time."},
        {R"("poweredOn")", R"("on")", "line 2: 'state' is not a state."},
        {R"("01ffffff")", R"("01fff")", "line 19: 'value' is not bytes in lower-case hexadecimal."},
        {R"("1F14")", R"("1F1")", "line 13: 'uuid' is not a UUID."},
        {R"(("properties":)18)", "$01-1",
         "line 13: 'properties' is not a whole number of 32 bits."},
    };
    for (const auto& [pattern, replacement, fault] : cases) {
        const std::string text = replaced(round, pattern, replacement);
        EXPECT_NE(text, round) << pattern;
        std::ofstream(file, std::ios::binary) << text;
        try {
            const auto radio = ReplayRadio::install(file);
            ADD_FAILURE() << "taken: " << fault;
        } catch (const NSError& error) {
            EXPECT_EQ(error.localizedDescription(), file + ": " + fault);
        }
    }
}

TEST_F(ReplayTest, ANameThatIsNoTextIsRecordedAllTheSame) {
    RunLoop::main().setClock(std::make_shared<VirtualClock>());
    const auto radio = VirtualRadio::install();
    radio->add(std::make_shared<VirtualPeripheral>("\xFF-pen"));
    {
        const auto recording = RadioTrace::record(file);
        CBCentralManager central(std::weak_ptr<CBCentralManagerDelegate>{});
        RunLoop::main().runFor(0);
        central.scanForPeripherals();
        RunLoop::main().runFor(0.1);
    }
    EXPECT_NE(contentsOf(file).find(R"("localName":"?-pen")"), std::string::npos);
    EXPECT_NO_THROW(std::ignore = ReplayRadio::install(file));
}

}  // namespace
}  // namespace InkoraKit
