#pragma once

#include <InkoraKit/virtual/VirtualConnectAnswer.h>
#include <InkoraKit/virtual/VirtualService.h>

#include "platform/bluetooth/radio.h"
#include "support/RadioRecord.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace InkoraKit {

/// What the contract's tests need of a radio's surroundings: an adapter, powered on, and within
/// reach one pen that advertises "InkoraPen" and the service "1F1F" with -60 dBm, accepts links,
/// and has no services until told.
class RadioWorld {
public:
    virtual ~RadioWorld() = default;

    virtual std::unique_ptr<Radio> openRadio() = 0;
    virtual void setPowered(bool on) = 0;

    virtual void setConnectAnswer(VirtualConnectAnswer answer) = 0;
    /// The pen's name comes in a scan response, after its first advertisement.
    virtual void delayName() = 0;
    virtual void setServices(std::vector<VirtualService> services) = 0;
    virtual void notify(const VirtualCharacteristic& characteristic, const Data& value) = 0;
    virtual void failNextRead(VirtualCharacteristic& characteristic) = 0;
    virtual void dropLink() = 0;
};

using MakeRadioWorld = std::unique_ptr<RadioWorld> (*)();

/// The radio port's contract: one suite, run on every radio by
///
///     INSTANTIATE_TEST_SUITE_P(SomeRadio, RadioContract, testing::Values(&makeSomeWorld));
class RadioContract : public testing::TestWithParam<MakeRadioWorld> {
protected:
    using Lines = RadioRecord::Lines;

    void SetUp() override;

    /// Lets the loop run until the radio has reported the line; a failure if it never does.
    void waitFor(const std::string& line);
    /// Lets the loop run until nothing more is to be expected.
    void waitForQuiet();

    /// Finds the pen and stops the scan.
    UUID findPen();
    /// Finds the pen, connects to it and discovers all it has.
    UUID linkPen();
    AttributeHandle handleOf(const VirtualCharacteristic& characteristic) const {
        return record.handleOf(characteristic.uuid());
    }
    void subscribeTo(const UUID& pen, const VirtualCharacteristic& characteristic);

    RadioRecord record;  // outlives the radio
    std::unique_ptr<RadioWorld> world;
    std::unique_ptr<Radio> radio;
    std::shared_ptr<VirtualCharacteristic> colour;
    std::shared_ptr<VirtualCharacteristic> battery;
};

}  // namespace InkoraKit
