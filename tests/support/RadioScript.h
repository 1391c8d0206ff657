#pragma once

#include "support/ScriptedRadio.h"
#include "support/Transcript.h"

#include <array>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace InkoraKit {

/// Plays scripts of radio events, and of what a derived class adds to them, one a line. Lines that
/// make no sense are skipped. The words, with n for a device from 0 to 2:
///
///     adapter n                 the adapter's state becomes n (0 to 5)
///     sight n NAME              device n advertises NAME; none without one
///     advertise n KEY VALUE…    the same with more: name, own, rssi, services, maker, data, power,
///                               connectable, and again, for a report although it had one
///     connected n   failed n   lost n   gone n       what becomes of device n's link
///     services n HANDLES        discovery finds these on device n: 1 and 5 are the pen's
///     characteristics n m HANDLES   the same in service m: 2 and 12 are colours, 3 battery
///     read n HANDLE HEX         an answer; no HEX: no bytes, "-": no value
///     notify n HANDLE HEX
///     subscribed n HANDLE       confirmed; "off": ended
///     rssi n STRENGTH
///     name n NAME               the device's own name
///     wait n                    n tenths of a second pass
///     run                       what is queued is done
///
/// "!" in place of what is found, read or confirmed is a failure.
class RadioScript {
public:
    RadioScript();
    virtual ~RadioScript();
    RadioScript(const RadioScript&) = delete;
    RadioScript& operator=(const RadioScript&) = delete;

    /// Plays the script to its end, or to that of what it is about.
    void play(std::string_view script);

    /// The script with what happened below each line, indented. What it has there already is not
    /// looked at, so that a transcript that still holds comes out as it was.
    std::string transcribed(std::string_view script);

protected:
    static constexpr const char* nilFound =
        "unexpectedly found nil while unwrapping an Optional value";
    static constexpr const char* outOfRange = "Index out of range";

    /// Answers false when what the script is about has come to its end.
    virtual bool playLine(const std::string& line);
    virtual std::string happened() { return transcript.take(); }

    /// Makes each name a word for all lines up to its own, played without being transcribed.
    void addStages(std::initializer_list<std::pair<const char*, const char*>> linesByName);

    int number();
    std::string word();
    std::optional<std::string> restOfLine();
    std::vector<CBUUID> uuids();  // of one word, commas between them
    const UUID& device() { return devices[static_cast<unsigned>(number()) % devices.size()]; }

    Transcript transcript;
    std::map<std::string, std::function<void()>> actions;
    std::set<std::string> accountedFor;  // fatal stops that what is queued may lead to

private:
    void addEvent(const std::string& name, std::function<void(RadioListener&, const UUID&)> event);
    std::optional<NSError> failure(std::string_view text) const;
    Sighting sighting(const UUID& identifier);
    std::optional<Data> value(AttributeHandle handle, const std::string& text);
    template <class Found>
    std::vector<Found> found(const char* (*uuidOf)(int), std::optional<NSError>& failed);

    std::array<UUID, 3> devices = {UUID({0}), UUID({0}), UUID({0})};
    const NSError error{"radio", 9};
    std::istringstream arguments;
};

/// Fails unless each transcript in the folder is what its script comes to. What that is instead is
/// left where the failure says, to be looked at and taken over.
void expectTranscripts(const std::filesystem::path& folder,
                       const std::function<std::unique_ptr<RadioScript>()>& makeScript);

}  // namespace InkoraKit
