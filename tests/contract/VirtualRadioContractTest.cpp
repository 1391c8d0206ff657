#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/virtual/VirtualClock.h>
#include <InkoraKit/virtual/VirtualPen.h>
#include <InkoraKit/virtual/VirtualRadio.h>

#include "RadioContract.h"

namespace InkoraKit {
namespace {

class VirtualWorld final : public RadioWorld {
public:
    VirtualWorld() {
        RunLoop::main().setClock(std::make_shared<VirtualClock>());
        radio_->add(pen_);
    }
    ~VirtualWorld() override { RunLoop::main().setClock(std::make_shared<SystemClock>()); }

    std::unique_ptr<Radio> openRadio() override { return InkoraKit::openRadio(); }
    void setPowered(bool on) override {
        radio_->setState(on ? CBManagerState::poweredOn : CBManagerState::poweredOff);
    }
    void setConnectAnswer(VirtualConnectAnswer answer) override { pen_->setConnectAnswer(answer); }
    void delayName() override {
        VirtualAdvertisement sent = pen_->advertisement();
        sent.nameDelay = 0.25;
        pen_->setAdvertisement(sent);
    }
    void setServices(std::vector<VirtualService> services) override {
        pen_->setServices(std::move(services));
    }
    void notify(const VirtualCharacteristic& characteristic, const Data& value) override {
        pen_->notify(characteristic, value);
    }
    void failNextRead(VirtualCharacteristic& characteristic) override {
        characteristic.failNextRead(NSError("CBATTErrorDomain", 14));
    }
    void dropLink() override { pen_->dropLink(); }

private:
    std::shared_ptr<VirtualRadio> radio_ = VirtualRadio::install();
    std::shared_ptr<VirtualPen> pen_ = std::make_shared<VirtualPen>();
};

std::unique_ptr<RadioWorld> makeVirtualWorld() {
    return std::make_unique<VirtualWorld>();
}

}  // namespace

TEST_P(RadioContract, TableChangesDuringALink) {
    const UUID pen = linkPen();
    subscribeTo(pen, *colour);
    const AttributeHandle kept = handleOf(*colour);
    const auto heir = std::make_shared<VirtualCharacteristic>(colour->uuid(), Data{0x05});
    world->setServices({{CBUUID("180F"), {}}, {CBUUID("1F1F"), {heir}}});
    world->notify(*colour, Data{0x01});
    world->notify(*heir, Data{0x02});
    radio->read(pen, kept);
    waitForQuiet();
    EXPECT_EQ(record.take(),
              (Lines{"1 services invalidated", "1F14 notified <02>", "1F14 read <05>"}));

    radio->discoverServices(pen);
    waitFor("services");
    ASSERT_EQ(record.services.size(), 2u);
    record.characteristics.clear();
    radio->discoverCharacteristics(pen, record.services[1].handle);
    waitFor("characteristics 1F14");
    EXPECT_EQ(handleOf(*heir), kept);
}

INSTANTIATE_TEST_SUITE_P(VirtualRadio, RadioContract, testing::Values(&makeVirtualWorld));

}  // namespace InkoraKit
