#pragma once

#include "platform/bus/Bus.h"
#include "platform/foundation/loop/Alarm.h"
#include "platform/radios/bluez/ObjectTree.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace InkoraKit {

/// bluetoothd as seen from here: whether it is there, the objects it exports, kept up to date, and
/// calls to their methods.
///
/// Any user of the bus can send a signal straight to this process, whatever the match rules say. So
/// a signal counts only if its sender is the connection that owns org.bluez, and a change of that
/// owner only if the bus itself tells it. Answers need no such look: the policy of system buses
/// lets nobody answer a call but the one who was called.
class BluezDaemon {
public:
    enum class Presence {
        unknown,  // not answered yet
        noBus,
        absent,  // nobody on the bus who would be or become org.bluez, or he does not answer
        denied,  // the bus does not let us talk to it
        lost,    // was there, and may be back
        present,
    };

    /// Told of changes after they were made.
    class Observer {
    public:
        /// Another message of bluetoothd has come; what it says may be told next.
        virtual void messageHeard(std::uint64_t serial) = 0;
        virtual void presenceChanged() = 0;
        virtual void interfaceAdded(const std::string& path, const std::string& interface) = 0;
        virtual void interfaceRemoved(const std::string& path, const std::string& interface) = 0;
        /// `before` has an entry for each property concerned, with what it was until now.
        virtual void propertiesChanged(const std::string& path, const std::string& interface,
                                       const Properties& before) = 0;

    protected:
        ~Observer() = default;
    };

    using Completion = Bus::Completion;

    explicit BluezDaemon(Observer& observer) : observer_(observer) {}

    void start();

    Presence presence() const { return presence_; }

    /// True for a short while after bluetoothd came, or an adapter went, in which no adapter means
    /// nothing yet: it takes its name before it exports its adapters, and when it ends, it gives up
    /// its adapters before its name. The end of that while is told as a change of presence.
    bool isSettling() const { return settling_.isSet(); }

    const ObjectTree& objects() const { return objects_; }

    /// Where bluetoothd is present: the bus that it is on, and the unique name that it has there.
    Bus& bus() { return *bus_; }
    const std::string& owner() const { return owner_; }

    /// Asks for all objects anew; `done` runs when the tree is what BlueZ exports now.
    void refresh(std::function<void()> done);

    /// Takes the signal strengths known until now for old: their devices were not heard since.
    void forgetSignalStrengths();

    /// The completion runs once, later, or never if bluetoothd is lost before.
    void call(const std::string& path, const char* interface, const char* member,
              Completion completion, Arguments arguments = {}, double timeout = 25);
    /// Asks for nothing but a sign of life, at the latest after a second.
    void ping(Completion completion);
    /// Sends without waiting for an answer; `flush` sees to it that it has left this process.
    void send(const std::string& path, const char* interface, const char* member,
              Arguments arguments = {});
    void flush();

private:
    void open();
    void watch();
    bool isFromBluez(const MessageReader& signal) const;
    void askForObjects(bool startsService);
    void askAgainAfter(double pause, bool startsService);
    void objectsCame(Answer& answer);
    void refused(const BusError& error);
    void ownerChanged(MessageReader& signal);
    void settle();
    void busLost(int error);
    void become(Presence presence);
    void heard(const MessageReader& message);
    void addInterfaces(MessageReader& signal);
    void removeInterfaces(MessageReader& signal);
    void changeProperties(const std::string& path, MessageReader& signal);

    Observer& observer_;
    Presence presence_ = Presence::unknown;
    ObjectTree objects_;
    std::string owner_;    // of org.bluez, by unique name; empty when there is none or not known
    unsigned owners_ = 0;  // counts them, to tell answers to what a former one was asked
    Alarm asking_;
    Alarm settling_;
    Alarm reopening_;
    std::unique_ptr<Bus> bus_;
};

}  // namespace InkoraKit
