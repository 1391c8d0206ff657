#include "support/RadioScript.h"

#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/virtual/VirtualClock.h>

#include <gtest/gtest.h>

#include <charconv>
#include <fstream>
#include <regex>

namespace InkoraKit {
namespace {

Data bytesFromHex(std::string_view hex) {
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        std::uint8_t byte = 0;
        std::from_chars(hex.data() + i, hex.data() + i + 2, byte, 16);
        bytes.push_back(byte);
    }
    return Data(bytes);
}

const char* serviceWithHandle(int handle) {
    return handle == 1 || handle == 5 ? "1F1F" : "180A";
}

const char* characteristicWithHandle(int handle) {
    return handle % 10 == 2 ? "1F14" : handle % 10 == 3 ? "1F17" : "2A19";
}

}  // namespace

RadioScript::RadioScript() {
    RunLoop::main().setClock(std::make_shared<VirtualClock>());
    ScriptedRadio::install(&transcript);
    for (std::size_t i = 0; i < devices.size(); ++i) {
        UUID::Bytes bytes{};
        bytes.back() = static_cast<std::uint8_t>(i);
        devices[i] = UUID(bytes);
    }

    actions["run"] = [] { RunLoop::main().runFor(0); };
    actions["wait"] = [this] { RunLoop::main().runFor(number() % 1000 / 10.0); };
    actions["adapter"] = [this] {
        if (const auto* radio = ScriptedRadio::opened(); radio && radio->events)
            radio->events->adapterStateChanged(static_cast<CBManagerState>(number() % 6));
    };
    addEvent("sight", [this](RadioListener& radio, const UUID& from) {
        Sighting seen{.identifier = from, .name = {}, .advertisement = {}, .rssi = -50};
        seen.advertisement.localName = restOfLine();
        radio.sighted(seen);
    });
    addEvent("advertise",
             [this](RadioListener& radio, const UUID& from) { radio.sighted(sighting(from)); });
    addEvent("connected", [](RadioListener& radio, const UUID& to) { radio.connected(to); });
    addEvent("failed",
             [this](RadioListener& radio, const UUID& to) { radio.connectionFailed(to, error); });
    addEvent("lost",
             [this](RadioListener& radio, const UUID& to) { radio.disconnected(to, error); });
    addEvent("gone",
             [](RadioListener& radio, const UUID& to) { radio.disconnected(to, std::nullopt); });
    addEvent("services", [this](RadioListener& radio, const UUID& from) {
        std::optional<NSError> failed;
        auto services = found<RemoteService>(serviceWithHandle, failed);
        for (RemoteService& one : services) one.isPrimary = one.handle < 9;
        radio.servicesDiscovered(from, std::move(services), failed);
    });
    addEvent("characteristics", [this](RadioListener& radio, const UUID& from) {
        const auto service = static_cast<AttributeHandle>(number());
        std::optional<NSError> failed;
        auto all = found<RemoteCharacteristic>(characteristicWithHandle, failed);
        for (RemoteCharacteristic& one : all) one.properties = 0x10 + one.handle;
        radio.characteristicsDiscovered(from, service, std::move(all), failed);
    });
    addEvent("read", [this](RadioListener& radio, const UUID& from) {
        const auto handle = static_cast<AttributeHandle>(number());
        const std::string text = word();
        radio.valueRead(from, handle, value(handle, text), failure(text));
    });
    addEvent("notify", [this](RadioListener& radio, const UUID& from) {
        const auto handle = static_cast<AttributeHandle>(number());
        radio.valueNotified(from, handle, value(handle, word()));
    });
    addEvent("subscribed", [this](RadioListener& radio, const UUID& from) {
        const auto handle = static_cast<AttributeHandle>(number());
        const std::string text = word();
        radio.subscriptionChanged(from, handle, text.empty(), failure(text));
    });
    addEvent("rssi", [this](RadioListener& radio, const UUID& from) {
        const std::string text = word();
        const auto strength = text == "!" ? std::nullopt : std::optional(std::atoi(text.c_str()));
        radio.rssiRead(from, strength, failure(text));
    });
    addEvent("name", [this](RadioListener& radio, const UUID& of) {
        radio.nameChanged(of, restOfLine().value_or(""));
    });
}

RadioScript::~RadioScript() {
    installRadio({});
}

void RadioScript::play(std::string_view script) {
    std::istringstream lines{std::string(script)};
    for (std::string line; std::getline(lines, line);)
        if (!playLine(line)) return;
}

std::string RadioScript::transcribed(std::string_view script) {
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

bool RadioScript::playLine(const std::string& line) {
    arguments = std::istringstream(line);
    const auto action = line.starts_with(' ') ? actions.end() : actions.find(word());
    if (action != actions.end()) action->second();
    return true;
}

void RadioScript::addStages(
    std::initializer_list<std::pair<const char*, const char*>> linesByName) {
    for (std::string way; const auto& [name, lines] : linesByName)
        actions[name] = [this, way = way += lines] {
            play(way);
            happened();
        };
}

void RadioScript::addEvent(const std::string& name,
                           std::function<void(RadioListener&, const UUID&)> event) {
    actions[name] = [this, event = std::move(event)] {
        if (const auto* radio = ScriptedRadio::opened(); radio && radio->events)
            event(*radio->events, device());
    };
}

int RadioScript::number() {
    unsigned short value = 0;
    arguments >> value;
    return value;
}

std::string RadioScript::word() {
    std::string text;
    arguments >> text;
    return text;
}

std::optional<std::string> RadioScript::restOfLine() {
    std::string text;
    std::getline(arguments >> std::ws, text);
    return text.empty() ? std::nullopt : std::optional(text);
}

std::vector<CBUUID> RadioScript::uuids() {
    std::vector<CBUUID> list;
    std::istringstream words(word());
    for (std::string one; std::getline(words, one, ',');)
        if (one.size() == 4 && one.find_first_not_of("0123456789ABCDEF") == one.npos)
            list.emplace_back(one);
    return list;
}

std::optional<NSError> RadioScript::failure(std::string_view text) const {
    return text == "!" ? std::optional(error) : std::nullopt;
}

Sighting RadioScript::sighting(const UUID& identifier) {
    Sighting seen{.identifier = identifier, .name = {}, .advertisement = {}, .rssi = -50};
    for (std::string key = word(); !key.empty(); key = word()) {
        if (key == "again") seen.reportEvenIfKnown = true;
        if (key == "name") seen.advertisement.localName = word();
        if (key == "own") seen.name = word();
        if (key == "rssi") seen.rssi = std::atoi(word().c_str());
        if (key == "services") seen.advertisement.serviceUUIDs = uuids();
        if (key == "maker") seen.advertisement.manufacturerData = bytesFromHex(word());
        if (key == "power") seen.advertisement.txPowerLevel = std::atoi(word().c_str());
        if (key == "connectable") seen.advertisement.isConnectable = word() == "yes";
        if (key == "data")
            for (const CBUUID& uuid : uuids())
                seen.advertisement.serviceData.insert_or_assign(uuid, bytesFromHex(word()));
    }
    return seen;
}

std::optional<Data> RadioScript::value(AttributeHandle handle, const std::string& text) {
    if (text == "-" || text == "!") return std::nullopt;
    const Data bytes = bytesFromHex(text);
    // A colour of less than three bytes has no three components; a battery level is a number.
    if (handle % 10 == 2 && bytes.size() < 3) accountedFor.insert(outOfRange);
    if (handle % 10 == 3 &&
        (bytes.empty() || bytes.size() > 8 || (bytes.size() == 8 && bytes[0] >= 0x80)))
        accountedFor.insert(nilFound);
    return bytes;
}

template <class Found>
std::vector<Found> RadioScript::found(const char* (*uuidOf)(int), std::optional<NSError>& failed) {
    std::vector<Found> all;
    for (std::string next = word(); !next.empty(); next = word()) {
        if (next == "!") {
            failed = error;
            accountedFor.insert(nilFound);  // there may be no list
            continue;
        }
        const int handle = std::atoi(next.c_str()) % 100;
        all.push_back({static_cast<AttributeHandle>(handle), CBUUID(uuidOf(handle))});
    }
    return all;
}

void expectTranscripts(const std::filesystem::path& folder,
                       const std::function<std::unique_ptr<RadioScript>()>& makeScript) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string expected{std::istreambuf_iterator<char>(file), {}};
        const std::string actual = makeScript()->transcribed(expected);
        const auto kept = std::filesystem::path(testing::TempDir()) / entry.path().filename();
        if (actual != expected) std::ofstream(kept, std::ios::binary) << actual;
        EXPECT_EQ(actual, expected) << entry.path() << " as it is now: " << kept;
        ++count;
    }
    EXPECT_GT(count, 0) << folder;
}

}  // namespace InkoraKit
