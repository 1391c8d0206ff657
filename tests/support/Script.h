#pragma once

#include <InkoraKit/platform/CBUUID.h>
#include <InkoraKit/platform/Data.h>

#include <filesystem>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace InkoraKit {

/// Plays a text, a line at a time, on a clock that nobody waits for. The first word of a line says
/// what to do; a derived class knows which words there are. Lines that make no sense are skipped.
///
///     wait S              S seconds pass
///     run                 what is queued is done
///     inside EVENT LINE   LINE is played when EVENT happens the next time, before it is over
class Script {
public:
    Script();
    virtual ~Script() = default;
    Script(const Script&) = delete;
    Script& operator=(const Script&) = delete;

    /// Plays the script to its end, or to that of what it is about.
    void play(std::string_view script);

    /// The script with what happened below each line, indented. What it has there already is not
    /// looked at, so that a transcript that still holds comes out as it was.
    std::string transcribed(std::string_view script);

protected:
    /// Answers false when what the script is about has come to its end.
    virtual bool playLine(const std::string& line);
    /// What happened since the last call of this, as indented lines.
    virtual std::string happened() = 0;
    /// An event that a line may be played inside of.
    void happens(const std::string& event);

    /// Makes each name a word for all lines up to its own, played without being transcribed.
    void addStages(std::initializer_list<std::pair<const char*, const char*>> linesByName);

    // What follows in the line: nothing, or 0, where it has ended.
    int number();
    double seconds();
    std::string word();
    std::optional<std::string> restOfLine();
    std::vector<CBUUID> uuids();  // of one word, commas between them
    Data bytes() { return bytesFromHex(word()); }
    static Data bytesFromHex(std::string_view hex);

    std::map<std::string, std::function<void()>> actions;

private:
    std::istringstream arguments;
    std::map<std::string, std::string> inside;  // lines by events
};

/// Fails unless each transcript in the folder is what its script comes to. What that is instead is
/// left where the failure says, to be looked at and taken over.
void expectTranscripts(const std::filesystem::path& folder,
                       const std::function<std::unique_ptr<Script>()>& makeScript);

}  // namespace InkoraKit
