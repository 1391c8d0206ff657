#include <InkoraKit/InkoraErrorCodes.h>
#include <InkoraKit/InkoraManager.h>
#include <InkoraKit/InkoraProtocols.h>
#include <InkoraKit/platform/RunLoop.h>

#include "c/Boundary.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <memory>
#include <mutex>
#include <string>

// The receiver of a C host: a table of callbacks in the place of a class.
namespace InkoraKit {
namespace {

static_assert(INKORA_FAILURE_BLUETOOTH == InkoraErrorCodes::inSufficientResources);
static_assert(INKORA_FAILURE_CONNECTION == InkoraErrorCodes::deviceFailedToConnect);
static_assert(INKORA_FAILURE_NOT_FOUND == InkoraErrorCodes::deviceConnectionTimeout);

class CallbackReceiver final : public InkoraProtocols {
public:
    CallbackReceiver(const inkora_callbacks& callbacks, void* context)
        : callbacks_(callbacks), context_(context) {}

    ~CallbackReceiver() override {
        try {
            call(callbacks_.released);
        } catch (...) {  // as with the other callbacks, it leaves through the loop
            RunLoop::main().post(
                [thrown = std::current_exception()] { std::rethrow_exception(thrown); });
        }
    }

    CallbackReceiver(const CallbackReceiver&) = delete;
    CallbackReceiver& operator=(const CallbackReceiver&) = delete;

    void didFailToConnectWithBlueTooth(const NSError& error) override {
        call(callbacks_.bluetooth_unavailable, error.code(), error.domain().c_str());
    }
    void didConnectedToPeripheral() override { call(callbacks_.connected); }
    void didFailedToInterrogate(const NSError& error) override {
        call(callbacks_.failed, error.code(), error.domain().c_str());
    }
    void didDisconnectPeripheral() override { call(callbacks_.disconnected); }
    void didPeripheralCaptured(const UIColor& colour) override {
        const inkora_colour captured = {colour.red(), colour.green(), colour.blue(),
                                        colour.alpha()};
        call(callbacks_.colour_captured, &captured);
    }
    void didPeripheralIndicated(std::int64_t batteryLevel) override {
        call(callbacks_.battery, batteryLevel);
    }
    void didPeripheralSensored(std::int64_t signalStrength) override {
        call(callbacks_.proximity, signalStrength);
    }
    void didPeripheralProvided(const std::string& name, const std::string& identifier) override {
        call(callbacks_.information, name.c_str(), identifier.c_str());
    }

private:
    template <class... Parameters, class... Arguments>
    void call(void (*callback)(void*, Parameters...), Arguments... arguments) const {
        if (callback) callback(context_, arguments...);
    }

    inkora_callbacks callbacks_;
    void* context_;
};

// No version comes near: a size beyond was never set.
constexpr std::size_t longestTable = 1024;

// The table as this library knows it, of a host that was compiled with this header or another.
inkora_callbacks tableOf(const inkora_callbacks* callbacks) {
    if (!callbacks) throw Refusal(INKORA_INVALID_ARGUMENT, "there is no table of callbacks");
    inkora_callbacks table{};
    const std::size_t size = callbacks->size;
    if (size < sizeof table || size > longestTable)
        throw Refusal(INKORA_INVALID_ARGUMENT, "the table's size is not sizeof(inkora_callbacks)");
    std::memcpy(&table, callbacks, sizeof table);
    const auto* const bytes = reinterpret_cast<const unsigned char*>(callbacks);
    if (std::any_of(bytes + sizeof table, bytes + size, [](unsigned char byte) { return byte; }))
        throw Refusal(INKORA_INVALID_ARGUMENT,
                      "the table has callbacks that this version of the library does not know");
    return table;
}

// The kit holds its receiver weakly: this is what keeps it. Changed on the loop, behind what the
// kit queued there; several threads may queue.
void own(std::shared_ptr<CallbackReceiver> receiver) {
    static std::shared_ptr<CallbackReceiver>* const owner = new std::shared_ptr<CallbackReceiver>;
    static std::mutex queueing;
    const std::lock_guard lock(queueing);
    if (receiver) {
        InkoraManager::registerInkoraManager(receiver);
    } else {
        InkoraManager::unRegisterInkoraManager();
    }
    RunLoop::main().post([receiver = std::move(receiver)] { *owner = receiver; });
}

}  // namespace
}  // namespace InkoraKit

using namespace InkoraKit;

extern "C" {

inkora_status inkora_register(const inkora_callbacks* callbacks, void* context) {
    return onAnyThread(
        [&] { own(std::make_shared<CallbackReceiver>(tableOf(callbacks), context)); });
}

inkora_status inkora_unregister(void) {
    return onAnyThread([] { own(nullptr); });
}
}
