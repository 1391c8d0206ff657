#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/NSError.h>

#include <functional>
#include <optional>

namespace InkoraKit {

/// Opens the browser's chooser, with pens alone in it. A page hears of no pen that the person has
/// not chosen in it once; a pen that was chosen is found by each scan from then on, and by one that
/// is under way at once. The chooser may stay open for longer than a scan lasts, so pairing is best
/// started when it has been answered:
///
///     choosePen([](const std::optional<NSError>& error) {
///         if (!error) InkoraManager::startDevicePairing();
///     });
///
/// Only there where the kit is WebAssembly. Browsers insist on a click or a key: call it in the
/// handler of that.
/// @param answered is called on the main run loop, once; with an error of the CBErrorDomain when
/// nothing was chosen, whose localizedDescription() says why in the browser's words
INKORA_EXPORT void choosePen(std::function<void(const std::optional<NSError>&)> answered);

}  // namespace InkoraKit
