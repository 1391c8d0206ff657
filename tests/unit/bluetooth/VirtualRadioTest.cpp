#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/virtual/VirtualPen.h>
#include <InkoraKit/virtual/VirtualRadio.h>

#include "support/RadioRecord.h"
#include "support/Script.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace InkoraKit {
namespace {

/// A script for the virtual radio, its pen, and managers' radios on it, the first until "manager"
/// says otherwise. The words:
///
///     manager n   close         which of two radios is meant; it ends
///     linked                    the pen is connected, and all it has was found
///     scan   stop   connect   disconnect   services   characteristics   read UUID
///     subscribe UUID   signal   commands of the radio
///     state n   unreadable   remove   add   pull-out          what becomes of the virtual radio
///     drop   lose   range WHERE   name NAME   own NAME   rssi n   again   silent   interval S
///     name-delay S   connect-delay S   answer HOW   reject   rejecting UUID
///     capture HEX   notify-nothing   capture-every S   seed n   no-more   battery n
///     next-read HEX   read-delay S            what the pen does, and is to do
///     last                      shows the last sighting
///     due                       shows whether anything is
class VirtualScript final : public Script {
public:
    VirtualScript() {
        air->add(pen);
        open(0);
        addRadioCommands();
        addPen();
    }
    ~VirtualScript() override { RunLoop::main().setClock(std::make_shared<SystemClock>()); }

private:
    struct Manager {
        RadioRecord record;
        std::unique_ptr<Radio> radio;
    };

    std::string happened() override {
        std::string text;
        for (Manager& manager : managers)
            for (const std::string& line : manager.record.take())
                text += (&manager == &managers[0] ? "  " : "  second: ") + line + '\n';
        return text;
    }
    void open(std::size_t which) {
        current = &managers[which];
        if (current->radio) return;
        current->radio = openRadio();
        current->radio->start(current->record);
    }
    Radio& radio() { return *current->radio; }
    AttributeHandle handle() {
        const auto uuid = uuids();
        return uuid.empty() ? 0 : current->record.handleOf(uuid[0]);
    }
    void note(const std::string& line) { current->record.lines.push_back(line); }

    void addRadioCommands() {
        addStages(
            {{"linked", "connect\nwait 0.5\nservices\nwait 0.5\ncharacteristics\nwait 0.5\n"}});
        actions["manager"] = [this] { open(static_cast<std::size_t>(number()) % 2); };
        actions["close"] = [this] { current->radio.reset(); };
        actions["scan"] = [this] { radio().startScan(); };
        actions["stop"] = [this] { radio().stopScan(); };
        actions["connect"] = [this] { radio().connect(id); };
        actions["disconnect"] = [this] { radio().disconnect(id); };
        actions["services"] = [this] { radio().discoverServices(id); };
        actions["characteristics"] = [this] {
            for (const RemoteService& service : current->record.services)
                radio().discoverCharacteristics(id, service.handle);
        };
        actions["read"] = [this] { radio().read(id, handle()); };
        actions["subscribe"] = [this] { radio().subscribe(id, handle(), true); };
        actions["signal"] = [this] { radio().readRSSI(id); };
        actions["last"] = [this] {
            const Sighting& last = current->record.sightings.back();
            note(last.name.value_or("no name of its own") + " " + std::to_string(last.rssi) +
                 (last.reportEvenIfKnown ? " again" : ""));
        };
        actions["due"] = [this] {
            note(RunLoop::main().timeUntilDue() ? "something is due" : "nothing is due");
        };
        actions["state"] = [this] { air->setState(static_cast<CBManagerState>(number())); };
        actions["unreadable"] = [this] { air->setCanReadRSSI(false); };
        actions["remove"] = [this] { air->remove(pen); };
        actions["add"] = [this] { air->add(pen); };
        actions["pull-out"] = [this] { air.reset(); };
    }
    void addPen() {
        actions["drop"] = [this] { pen->dropLink(); };
        actions["lose"] = [this] { pen->loseLink(); };
        actions["range"] = [this] {
            using enum VirtualProximity;
            static const std::map<std::string, VirtualProximity> places = {
                {"immediate", immediate}, {"near", near}, {"far", far}, {"out", outOfRange}};
            pen->setProximity(places.at(word()));
        };
        actions["name"] = [this] { pen->setName(restOfLine()); };
        actions["own"] = [this] { pen->setGapName(restOfLine()); };
        actions["rssi"] = [this] { pen->setRSSI(number()); };
        actions["again"] = [this] { pen->advertiseAgain(); };
        actions["silent"] = [this] { pen->setAdvertising(false); };
        actions["interval"] = [this] { advertise(&VirtualAdvertisement::interval); };
        actions["name-delay"] = [this] { advertise(&VirtualAdvertisement::nameDelay); };
        actions["connect-delay"] = [this] { pen->setConnectDelay(seconds()); };
        actions["answer"] = [this] {
            using enum VirtualConnectAnswer;
            static const std::map<std::string, VirtualConnectAnswer> answers = {
                {"accept", accept}, {"refuse", refuse}, {"none", none}};
            pen->setConnectAnswer(answers.at(word()));
        };
        actions["reject"] = [this] { pen->failNextDiscovery(error); };
        actions["rejecting"] = [this] {
            for (const CBUUID& uuid : uuids())
                pen->setServices(
                    {{uuid, {std::make_shared<VirtualCharacteristic>(uuid, Data{}, 0u)}}});
        };
        actions["capture"] = [this] {
            const Data colour = bytes();
            pen->capture(colour[0], colour[1], colour[2]);
        };
        actions["notify-nothing"] = [this] { pen->notify(*pen->colour(), std::nullopt); };
        actions["seed"] = [this] { seed = static_cast<std::uint32_t>(number()); };
        actions["capture-every"] = [this] { pen->startCapturing(seconds(), seed); };
        actions["no-more"] = [this] { pen->stopCapturing(); };
        actions["battery"] = [this] { pen->setBattery(static_cast<std::uint8_t>(number())); };
        actions["next-read"] = [this] {
            const std::string text = word();
            if (text == "!") return pen->colour()->failNextRead(error);
            pen->colour()->answerNextRead(text == "-" ? std::nullopt
                                                      : std::optional(bytesFromHex(text)));
        };
        actions["read-delay"] = [this] { pen->colour()->setReadDelay(seconds()); };
    }
    void advertise(double VirtualAdvertisement::*time) {
        VirtualAdvertisement sent = pen->advertisement();
        sent.*time = seconds();
        pen->setAdvertisement(sent);
    }

    std::array<Manager, 2> managers;
    Manager* current = nullptr;
    std::shared_ptr<VirtualRadio> air = VirtualRadio::install();
    std::shared_ptr<VirtualPen> pen = std::make_shared<VirtualPen>();
    const UUID id = pen->identifier();
    const NSError error{"CBATTErrorDomain", 14};
    std::uint32_t seed = 0;
};

TEST(VirtualRadioTest, EveryRuleHoldsAsTranscribed) {
    expectTranscripts(INKORA_TESTS "/unit/bluetooth/virtual",
                      [] { return std::make_unique<VirtualScript>(); });
}

TEST(VirtualRadioTest, AnIdentifierComesFromNameAndSerialNumberAndIsThereOnce) {
    const auto air = VirtualRadio::install();
    const auto pen = std::make_shared<VirtualPen>();
    air->add(pen);
    EXPECT_EQ(VirtualPen().identifier(), pen->identifier());
    EXPECT_NE(VirtualPen(1).identifier(), pen->identifier());
    EXPECT_NE(VirtualPeripheral("Lamp").identifier(), pen->identifier());
    EXPECT_THROW(air->add(pen), std::invalid_argument);
    EXPECT_THROW(air->add(std::make_shared<VirtualPen>()), std::invalid_argument);
    air->add(std::make_shared<VirtualPen>(1));
}

}  // namespace
}  // namespace InkoraKit
