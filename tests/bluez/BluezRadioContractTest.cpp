#include "FakeBluez.h"
#include "PrivateBus.h"
#include "contract/RadioContract.h"
#include "platform/radios/bluez/BluezRadio.h"
#include "platform/radios/bluez/ObjectTree.h"

#include <map>
#include <utility>

namespace InkoraKit {
namespace {

/// bluetoothd 5.66 and a pen, as far as the contract goes: in the order in which the real one says
/// things.
class BluezWorld final : public RadioWorld {
public:
    BluezWorld() {
        fake_.addAdapter();
        fake_.on("StartDiscovery", [this](const std::string&) { startDiscovery(); });
        fake_.on("StopDiscovery", [this](const std::string&) { stopDiscovery(); });
        fake_.on("Connect", [this](const std::string&) { connect(); });
        fake_.on("Disconnect", [this](const std::string&) { disconnect(); });
        fake_.on("StartNotify", [this](const std::string& path) { setNotifying(path, true); });
        fake_.on("StopNotify", [this](const std::string& path) { setNotifying(path, false); });
        fake_.on("ReadValue", [this](const std::string& path) { read(path); });
    }

    std::unique_ptr<Radio> openRadio() override { return std::make_unique<BluezRadio>(); }

    void setPowered(bool on) override {
        if (!on && isConnected_) dropLink();
        if (std::exchange(isConnecting_, false) && !on) {
            isKnown_ = false;
            fake_.remove(FakeBluez::pen, ObjectTree::device);
        }
        fake_.switchAdapter(on);
    }

    void setConnectAnswer(VirtualConnectAnswer answer) override {
        connectAnswer_ = answer;
        if (isConnecting_) connect();
    }

    void delayName() override {}  // as every time that the pen is new

    void setServices(std::vector<VirtualService> services) override {
        services_ = std::move(services);
    }

    void notify(const VirtualCharacteristic& characteristic, const Data& value) override {
        for (const auto& [path, known] : characteristics_)
            if (known.get() == &characteristic && isConnected_ && notifying_[path])
                fake_.changeValue(path, value);
    }

    void failNextRead(VirtualCharacteristic& characteristic) override {
        failing_ = &characteristic;
    }

    void dropLink() override {
        if (!isConnected_) return;
        isConnected_ = false;
        fake_.endLink();
    }

private:
    using Lines = RadioRecord::Lines;

    void startDiscovery() {
        fake_.reply("StartDiscovery");
        if (!std::exchange(isKnown_, true))
            fake_.addPen({{"RSSI", std::int16_t{-60}},
                          {"UUIDs", Lines{"00001f1f-0000-1000-8000-00805f9b34fb"}}});
        fake_.changePen({{"RSSI", std::int16_t{-60}}, {"Name", std::string("InkoraPen")}});
    }

    void stopDiscovery() {
        fake_.reply("StopDiscovery");
        if (isKnown_) fake_.changePen({}, {"RSSI"});
    }

    void connect() {
        isConnecting_ = connectAnswer_ == VirtualConnectAnswer::none;
        if (isConnecting_) return;
        if (connectAnswer_ == VirtualConnectAnswer::refuse)
            return fake_.replyError("Connect", "org.bluez.Error.Failed", "le-connection-refused");
        isConnected_ = true;
        fake_.changePen({{"Connected", true}});
        fake_.reply("Connect");
        fake_.changePen({{"ServicesResolved", true}});
        exportServices();
    }

    void exportServices() {
        int handle = 10;
        for (const VirtualService& service : services_) {
            const std::string path = FakeBluez::pen + ("/service00" + std::to_string(handle++));
            fake_.add(path, ObjectTree::service,
                      {{"UUID", service.uuid.uuid().uuidString()}, {"Primary", service.isPrimary}});
            for (const auto& characteristic : service.characteristics) {
                const std::string below = path + "/char00" + std::to_string(handle++);
                characteristics_[below] = characteristic;
                fake_.add(below, ObjectTree::characteristic,
                          {{"UUID", characteristic->uuid().uuid().uuidString()},
                           {"Flags", Lines{"read", "notify"}}});
            }
        }
    }

    void disconnect() {
        if (std::exchange(isConnecting_, false))
            fake_.replyError("Connect", "org.bluez.Error.Failed", "br-connection-canceled");
        fake_.reply("Disconnect");
        dropLink();
    }

    // Also when the link is down; and the subscription outlives links.
    void setNotifying(const std::string& path, bool on) {
        notifying_[path] = on;
        fake_.reply(on ? "StartNotify" : "StopNotify");
    }

    void read(const std::string& path) {
        const auto& characteristic = characteristics_[path];
        if (failing_ == characteristic.get()) {
            failing_ = nullptr;
            return fake_.replyError("ReadValue", "org.bluez.Error.Failed",
                                    "Operation failed with ATT error: 0x0e");
        }
        const Data value = characteristic->value().value_or(Data());
        fake_.changeValue(path, value);
        fake_.replyBytes("ReadValue", value);
    }

    PrivateBus bus_;
    FakeBluez fake_{bus_.address()};
    std::vector<VirtualService> services_;
    std::map<std::string, std::shared_ptr<VirtualCharacteristic>> characteristics_;
    std::map<std::string, bool> notifying_;
    const VirtualCharacteristic* failing_ = nullptr;
    VirtualConnectAnswer connectAnswer_ = VirtualConnectAnswer::accept;
    bool isKnown_ = false;
    bool isConnecting_ = false;
    bool isConnected_ = false;
};

// None without dbus-daemon; the tests of BluezRadioTest say so.
std::vector<MakeRadioWorld> worlds() {
    if (!PrivateBus::isAvailable()) return {};
    return {[]() -> std::unique_ptr<RadioWorld> { return std::make_unique<BluezWorld>(); }};
}

}  // namespace

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(RadioContract);
INSTANTIATE_TEST_SUITE_P(BluezRadio, RadioContract, testing::ValuesIn(worlds()));

}  // namespace InkoraKit
