#include "support/Script.h"

#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/virtual/VirtualClock.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <regex>

namespace InkoraKit {

Script::Script() {
    RunLoop::main().setClock(std::make_shared<VirtualClock>());
    actions["run"] = [] { RunLoop::main().runFor(0); };
    actions["wait"] = [this] { RunLoop::main().runFor(seconds()); };
    actions["inside"] = [this] {
        const std::string event = word();
        inside[event] = restOfLine().value_or("");
    };
}

void Script::play(std::string_view script) {
    std::istringstream lines{std::string(script)};
    for (std::string line; std::getline(lines, line);)
        if (!playLine(line)) return;
}

std::string Script::transcribed(std::string_view script) {
    static const std::regex address("0x[0-9a-f]{5,}");
    std::string text;
    std::istringstream lines{std::string(script)};
    bool goesOn = true;
    for (std::string line; goesOn && std::getline(lines, line);) {
        if (line.starts_with(' ')) continue;
        testing::internal::CaptureStderr();
        goesOn = playLine(line);
        text += line + '\n' + happened();
        std::istringstream complaints(testing::internal::GetCapturedStderr());
        for (std::string said; std::getline(complaints, said);) text += "  stderr: " + said + '\n';
    }
    return std::regex_replace(text, address, "0x…");
}

bool Script::playLine(const std::string& line) {
    arguments = std::istringstream(line);
    const auto action = line.starts_with(' ') ? actions.end() : actions.find(word());
    if (action != actions.end()) action->second();
    return true;
}

void Script::happens(const std::string& event) {
    if (const auto line = inside.extract(event)) Script::playLine(line.mapped());
}

void Script::addStages(std::initializer_list<std::pair<const char*, const char*>> linesByName) {
    for (std::string way; const auto& [name, lines] : linesByName)
        actions[name] = [this, way = way += lines] {
            play(way);
            happened();
        };
}

int Script::number() {
    unsigned short value = 0;
    arguments >> value;
    return value;
}

double Script::seconds() {
    double value = 0;
    arguments >> value;
    return std::fmod(value, 100);
}

std::string Script::word() {
    std::string text;
    arguments >> text;
    return text;
}

std::optional<std::string> Script::restOfLine() {
    std::string text;
    std::getline(arguments >> std::ws, text);
    return text.empty() ? std::nullopt : std::optional(text);
}

std::vector<CBUUID> Script::uuids() {
    std::vector<CBUUID> list;
    std::istringstream words(word());
    for (std::string one; std::getline(words, one, ',');)
        if (one.size() == 4 && one.find_first_not_of("0123456789ABCDEF") == one.npos)
            list.emplace_back(one);
    return list;
}

Data Script::bytesFromHex(std::string_view hex) {
    std::vector<std::uint8_t> all;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        std::uint8_t byte = 0;
        std::from_chars(hex.data() + i, hex.data() + i + 2, byte, 16);
        all.push_back(byte);
    }
    return Data(all);
}

void expectTranscripts(const std::filesystem::path& folder,
                       const std::function<std::unique_ptr<Script>()>& makeScript) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string expected{std::istreambuf_iterator<char>(file), {}};
        const std::string actual = makeScript()->transcribed(expected);
        ++count;
        if (actual == expected) continue;
        const auto is =
            std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end()).first;
        const auto kept = std::filesystem::path(testing::TempDir()) / entry.path().filename();
        std::ofstream(kept, std::ios::binary) << actual;
        ADD_FAILURE() << entry.path() << " is no longer right from line "
                      << 1 + std::count(actual.begin(), is, '\n') << " on; compare with " << kept;
    }
    EXPECT_GT(count, 0) << folder;
}

}  // namespace InkoraKit
