#include <InkoraKit/virtual/ReplayRadio.h>

#include "platform/bluetooth/AbsentRadio.h"
#include "platform/foundation/objects/CocoaErrorCodes.h"
#include "platform/radios/trace/ReplayPort.h"
#include "platform/radios/trace/TracePlayer.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

namespace InkoraKit {
namespace {

NSError readingError(std::int64_t code, const std::string& path, const std::string& fault) {
    return NSError(NSCocoaErrorDomain, code, {{NSLocalizedDescriptionKey, path + ": " + fault}});
}

std::string contentsOf(const std::string& path) {
    const auto fault = [&] {
        return readingError(fileReadUnknownError, path, std::string(std::strerror(errno)) + '.');
    };
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                               std::fclose);
    if (!file) throw fault();
    std::string contents;
    std::array<char, 65536> part;
    while (const auto size = std::fread(part.data(), 1, part.size(), file.get()))
        contents.append(part.data(), size);
    if (std::ferror(file.get())) throw fault();
    return contents;
}

}  // namespace

std::string ReplayDeparture::description() const {
    return "line " + std::to_string(line) + ": recorded " + recorded + ", given " + given;
}

std::shared_ptr<ReplayRadio> ReplayRadio::install(const std::string& path) {
    Trace trace;
    try {
        trace = readTrace(contentsOf(path));
    } catch (const NSError& error) {
        if (error.code() != propertyListReadCorruptError) throw;
        throw readingError(error.code(), path, error.localizedDescription());
    }
    const auto player = std::make_shared<TracePlayer>(std::move(trace));
    std::shared_ptr<ReplayRadio> radio(new ReplayRadio(player));
    installRadio(
        [player]() -> std::unique_ptr<Radio> {
            if (player->take()) return std::make_unique<ReplayPort>(player);
            return std::make_unique<AbsentRadio>(CBManagerStateReason::noAdapter);
        },
        radio.get());
    return radio;
}

ReplayRadio::ReplayRadio(std::shared_ptr<TracePlayer> player) : player_(std::move(player)) {}

ReplayRadio::~ReplayRadio() {
    uninstallRadio(this);
    player_->abandon();
}

bool ReplayRadio::isOver() const noexcept {
    return player_->isOver();
}

void ReplayRadio::setWhenOver(std::function<void()> action) {
    player_->whenOver = std::move(action);
}

const std::vector<ReplayDeparture>& ReplayRadio::departures() const noexcept {
    return player_->departures();
}

void ReplayRadio::setWhenDeparted(std::function<void(const ReplayDeparture&)> action) {
    player_->whenDeparted = std::move(action);
}

}  // namespace InkoraKit
