#pragma once

#include <InkoraKit/platform/Data.h>

#include "platform/bus/server/ExportedObjects.h"
#include "platform/foundation/loop/Alarm.h"
#include "platform/radios/bluez/BluezDaemon.h"

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace InkoraTool {

/// A pen on the peripheral side of bluetoothd: advertises while no host has a link to it, offers
/// the service of a pen, answers what hosts read and notifies them of new values. Where bluetoothd
/// or the adapter goes, it comes up again with them.
class BluezPen final : private InkoraKit::BluezDaemon::Observer {
public:
    enum class Characteristic { colour, battery };

    /// Told of what happens, on the main run loop.
    class Listener {
    public:
        virtual void advertising(const std::string& name, const std::string& adapter,
                                 const std::string& address) = 0;
        virtual void hidden() = 0;
        virtual void connected(const std::string& address) = 0;
        virtual void disconnected(const std::string& address) = 0;
        virtual void subscribed(Characteristic characteristic, bool isSubscribed) = 0;
        virtual void wasRead(Characteristic characteristic) = 0;
        /// The pen cannot be had at present; told once for each reason.
        virtual void unavailable(const std::string& why) = 0;
        /// It takes values again.
        virtual void hasRoom() = 0;

    protected:
        ~Listener() = default;
    };

    /// The adapter by its name, hci1; by none the first that can be a pen.
    BluezPen(Listener& listener, std::string name, std::string adapter)
        : listener_(listener), name_(std::move(name)), wantedAdapter_(std::move(adapter)) {}

    void start() { daemon_.start(); }
    /// Lets go of the link, and of all that bluetoothd and the adapter have of the pen, then runs
    /// `done`, after some seconds at the latest.
    void end(std::function<void()> done);

    /// A new value: what a host reads from now on, and is notified of.
    void setValue(Characteristic characteristic, InkoraKit::Data value);
    /// False while bluetoothd has not taken the values that it was given.
    bool hasRoom() const { return valuesUnderWay_ < mostValuesUnderWay; }

    void setName(const std::string& name);
    void setVisible(bool isVisible);
    /// Whether what is read is answered; what was not, is as soon as it may be.
    void setAnswering(bool isAnswering);
    /// Ends the link. False when there is none.
    bool drop();

private:
    static constexpr int mostValuesUnderWay = 128;

    struct Read {
        InkoraKit::IncomingCall call;
        Characteristic characteristic;
        std::size_t offset;
    };

    // What bluetoothd tells
    void messageHeard(std::uint64_t) override {}
    void presenceChanged() override;
    void interfaceAdded(const std::string& path, const std::string& interface) override;
    void interfaceRemoved(const std::string& path, const std::string& interface) override;
    void propertiesChanged(const std::string& path, const std::string& interface,
                           const InkoraKit::Properties& before) override;

    // What the pen comes up on, and goes down with
    std::string chooseAdapter(std::string& why) const;
    std::string obstacleOf(const std::string& adapter) const;
    void comeUp();
    void goDown();
    void tryAgain(const std::string& why);
    void refused(const InkoraKit::BusError& error);
    void letGo();
    void ended();

    // What it shows
    void exportObjects();
    void exportCharacteristic(Characteristic characteristic, std::string_view uuid);
    void takeName();
    void giveNamesBack();
    void setAlias(const std::string& adapter, const std::string& alias,
                  InkoraKit::Bus::Completion completion);
    void adjustAdvertisement();
    void advertise();
    void withdraw();

    // Hosts
    void deviceChanged(const std::string& device);
    void hostCame(const std::string& device);
    void hostLeft(const std::string& device);
    std::string addressOf(const std::string& device) const;
    void read(Characteristic characteristic, const InkoraKit::IncomingCall& call);
    void answer(const Read& read) const;

    InkoraKit::Bus::Completion whileUp(std::function<void(InkoraKit::Answer&)> completion);
    template <class T>
    const T* ofAdapter(const char* property) const;

    Listener& listener_;
    std::string name_;
    const std::string wantedAdapter_;
    std::array<InkoraKit::Data, 2> values_;
    bool isVisible_ = true;
    bool isAnswering_ = true;

    std::string adapter_;                        // by its path; empty while the pen is down
    unsigned ups_ = 0;                           // counts them, to tell late answers
    bool isRegistered_ = false;                  // the service
    bool isAdvertisementUnderWay_ = false;       // to bluetoothd, or back
    std::optional<std::string> advertisedName_;  // while bluetoothd advertises
    std::set<std::string> hosts_;                // by the paths of their devices
    std::vector<Read> heldReads_;
    int valuesUnderWay_ = 0;
    std::map<std::string, std::string> aliases_;  // of adapters, before they had the pen's name
    std::string told_;                            // why it is unavailable
    std::function<void()> done_;
    InkoraKit::Alarm retry_;
    InkoraKit::Alarm ending_;
    InkoraKit::BluezDaemon daemon_{*this};
    std::unique_ptr<InkoraKit::ExportedObjects> objects_;
};

}  // namespace InkoraTool
