#include <InkoraKit/platform/CBCentralManager.h>
#include <InkoraKit/platform/CBPeripheral.h>
#include <InkoraKit/platform/RunLoop.h>

#include "support/RadioScript.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace InkoraKit {
namespace {

/// A script for a central manager and its peripherals. The words besides those of radio events, for
/// services and characteristics numbered from 0 on as they were found, k:
///
///     found   linked   discovered      all that leads there
///     ask scan UUIDS   ask stop   ask connect n   ask cancel n   ask services n UUIDS
///     ask characteristics n k UUIDS   ask read n k   ask notify n k on   ask rssi n
///     deaf n       nobody hears of the peripheral from now on
///     describe n   shows descriptions
///     drop n       lets go of a peripheral
///     end          lets go of the manager
class CentralScript final : public RadioScript {
public:
    CentralScript() {
        transcript.facts = [this] { return facts(); };
        addStages({{"found", "run\nadapter 5\nrun\nask scan\nsight 0 Pen\nrun\nask stop\n"},
                   {"linked", "ask connect 0\nconnected 0\nrun\n"},
                   {"discovered",
                    "ask services 0\nservices 0 1\nrun\n"
                    "ask characteristics 0 0\ncharacteristics 0 1 2 3\nrun\n"}});
        actions["ask"] = [this] {
            if (const auto asked = questions.find(word()); asked != questions.end())
                asked->second();
        };
        actions["deaf"] = [this] { peripheral()->setDelegate({}); };
        actions["describe"] = [this] { describe(); };
        actions["drop"] = [this] { peripheral().reset(); };
        actions["end"] = [this] { manager.reset(); };
        transcript.take();  // the facts that each script begins with
    }
    ~CentralScript() override {
        manager.reset();
        RunLoop::main().runFor(0);
    }

private:
    /// Notes every callback, and keeps what it brings.
    struct Listener : CBCentralManagerDelegate, CBPeripheralDelegate {
        explicit Listener(CentralScript& playing) : script(playing) {}

        void centralManagerDidUpdateState(CBCentralManager& central) override {
            hear("state", std::to_string(static_cast<int>(central.state())));
        }
        void centralManagerDidDiscoverPeripheral(CBCentralManager&,
                                                 const std::shared_ptr<CBPeripheral>& found,
                                                 const Dictionary& sent,
                                                 const NSNumber& rssi) override {
            if (!script.peripherals[numberOf(found)]) found->setDelegate(script.listener);
            script.peripherals[numberOf(found)] = found;
            hear("found", found, " " + rssi.stringValue() + shown(sent));
        }
        void centralManagerDidConnectPeripheral(
            CBCentralManager&, const std::shared_ptr<CBPeripheral>& connected) override {
            hear("connected", connected);
        }
        void centralManagerDidFailToConnectPeripheral(
            CBCentralManager&, const std::shared_ptr<CBPeripheral>& failed,
            const std::optional<NSError>& error) override {
            hear("failed", failed, outcome(error));
        }
        void centralManagerDidDisconnectPeripheral(CBCentralManager&,
                                                   const std::shared_ptr<CBPeripheral>& ended,
                                                   const std::optional<NSError>& error) override {
            hear("disconnected", ended, outcome(error));
        }
        void peripheralDidDiscoverServices(const std::shared_ptr<CBPeripheral>& on,
                                           const std::optional<NSError>& error) override {
            hear("services", on, outcome(error) + " " + keep(on->services(), script.services));
        }
        void peripheralDidDiscoverCharacteristicsForService(
            const std::shared_ptr<CBPeripheral>& on, const std::shared_ptr<CBService>& service,
            const std::optional<NSError>& error) override {
            hear("characteristics", on,
                 outcome(error) + " " + keep(service->characteristics(), script.characteristics));
        }
        void peripheralDidModifyServices(
            const std::shared_ptr<CBPeripheral>& on,
            const std::vector<std::shared_ptr<CBService>>& invalidated) override {
            hear("modified", on, " " + keep(std::optional(invalidated), script.services));
        }
        void peripheralDidReadRSSI(const std::shared_ptr<CBPeripheral>& on, const NSNumber& rssi,
                                   const std::optional<NSError>& error) override {
            hear("rssi", on, outcome(error) + " " + rssi.stringValue());
        }
        void peripheralDidUpdateValueForCharacteristic(
            const std::shared_ptr<CBPeripheral>& on, const std::shared_ptr<CBCharacteristic>& of,
            const std::optional<NSError>& error) override {
            hear("value", on,
                 outcome(error) +
                     (of->value() ? " <" + of->value()->hexEncodedString() + ">" : " absent"));
        }
        void peripheralDidUpdateNotificationStateForCharacteristic(
            const std::shared_ptr<CBPeripheral>& on, const std::shared_ptr<CBCharacteristic>& of,
            const std::optional<NSError>& error) override {
            hear("notifying", on, outcome(error) + (of->isNotifying() ? " on" : " off"));
        }

        static std::string shown(const Dictionary& sent) {
            std::string text;
            for (const auto& [key, value] : sent) {
                text += " " + std::string(key.substr(std::string_view("kCBAdvData").size())) + "=";
                if (const auto name = value.as<std::string>()) text += *name;
                if (const auto number = value.as<NSNumber>()) text += number->stringValue();
                if (const auto bytes = value.as<Data>()) text += bytes->hexEncodedString();
                if (const auto list = value.as<std::vector<CBUUID>>())
                    for (const CBUUID& uuid : *list) text += uuid.uuidString() + ",";
                if (const auto map = value.as<std::map<CBUUID, Data>>())
                    for (const auto& [uuid, bytes] : *map)
                        text += uuid.uuidString() + ":" + bytes.hexEncodedString() + ",";
            }
            return text;
        }
        static std::string outcome(const std::optional<NSError>& error) {
            return error ? " error " + std::to_string(error->code()) : "";
        }
        /// Keeps what is new of a list, and answers its UUIDs.
        template <class Item>
        static std::string keep(const std::optional<std::vector<std::shared_ptr<Item>>>& found,
                                std::vector<std::shared_ptr<Item>>& kept) {
            if (!found) return "none";
            std::string text = "[";
            for (const auto& one : *found) {
                if (std::find(kept.begin(), kept.end(), one) == kept.end()) kept.push_back(one);
                text += " " + one->uuid().uuidString();
            }
            return text + " ]";
        }
        void hear(const std::string& event, const std::shared_ptr<CBPeripheral>& on,
                  const std::string& detail = "") {
            hear(event, std::to_string(numberOf(on)) + detail);
        }
        void hear(const std::string& event, const std::string& detail) {
            const auto within = script.transcript.step(event + " " + detail);
            script.happens(event);
        }

        CentralScript& script;
    };

    static std::size_t numberOf(const std::shared_ptr<CBPeripheral>& peripheral) {
        return peripheral->identifier().bytes().back();
    }
    std::shared_ptr<CBPeripheral>& peripheral() { return peripherals[device().bytes().back()]; }
    template <class Item>
    std::shared_ptr<Item> numbered(const std::vector<std::shared_ptr<Item>>& kept) {
        const auto k = static_cast<std::size_t>(number());
        return k < kept.size() ? kept[k] : nullptr;
    }

    /// What can be asked for at any time.
    std::vector<std::string> facts() const {
        std::vector<std::string> all;
        if (manager) {
            all.push_back("manager: state " + std::to_string(static_cast<int>(manager->state())));
            all.push_back(manager->isScanning() ? "manager: scanning" : "manager: idle");
        }
        static constexpr const char* states[] = {"disconnected", "connecting", "connected",
                                                 "disconnecting"};
        for (const auto& one : peripherals) {
            if (!one) continue;
            const std::string who = std::to_string(numberOf(one)) + ": ";
            all.push_back(who + states[static_cast<int>(one->state())]);
            all.push_back(who + "name " + one->name().value_or("unknown"));
            all.push_back(who + (one->services() ? "services known" : "no services"));
        }
        return all;
    }
    void describe() {
        const auto shown = [this](const auto& object) { transcript.note(object.description()); };
        shown(*manager);
        shown(*peripheral());
        for (const auto& service : services) shown(*service);
        for (const auto& characteristic : characteristics) shown(*characteristic);
    }

    const std::shared_ptr<Listener> listener = std::make_shared<Listener>(*this);
    std::shared_ptr<CBCentralManager> manager = std::make_shared<CBCentralManager>(listener);
    std::array<std::shared_ptr<CBPeripheral>, 3> peripherals;
    std::vector<std::shared_ptr<CBService>> services;
    std::vector<std::shared_ptr<CBCharacteristic>> characteristics;

    const std::map<std::string, std::function<void()>> questions = {
        {"scan", [this] { manager->scanForPeripherals(uuids()); }},
        {"stop", [this] { manager->stopScan(); }},
        {"connect", [this] { manager->connect(peripheral()); }},
        {"cancel", [this] { manager->cancelPeripheralConnection(peripheral()); }},
        {"rssi", [this] { peripheral()->readRSSI(); }},
        {"services", [this] { peripheral()->discoverServices(uuids()); }},
        {"read", [this] { peripheral()->readValue(numbered(characteristics)); }},
        {"characteristics",
         [this] {
             auto& on = *peripheral();
             const auto service = numbered(services);
             on.discoverCharacteristics(uuids(), service);
         }},
        {"notify",
         [this] {
             auto& on = *peripheral();
             const auto characteristic = numbered(characteristics);
             on.setNotifyValue(word() == "on", characteristic);
         }},
    };
};

TEST(CentralManagerTest, EveryRuleHoldsAsTranscribed) {
    expectTranscripts(INKORA_TESTS "/unit/bluetooth/central",
                      [] { return std::make_unique<CentralScript>(); });
}

}  // namespace
}  // namespace InkoraKit
