#include "platform/bluetooth/radio.h"

#if defined(INKORA_WITH_BLUEZ)
#include "platform/radios/bluez/BluezRadio.h"
#elif defined(INKORA_WITH_WEB)
#include "platform/radios/web/WebRadio.h"
#else
#include "platform/bluetooth/AbsentRadio.h"
#endif

namespace InkoraKit {

std::unique_ptr<Radio> openSystemRadio() {
#if defined(INKORA_WITH_BLUEZ)
    return std::make_unique<BluezRadio>();
#elif defined(INKORA_WITH_WEB)
    return std::make_unique<WebRadio>();
#else
    return std::make_unique<AbsentRadio>(CBManagerStateReason::noService);
#endif
}

}  // namespace InkoraKit
