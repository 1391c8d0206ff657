#pragma once

#include <InkoraKit/platform/RunLoopSource.h>

#include "platform/bus/MessageWriter.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct sd_bus;
struct sd_bus_message;

namespace InkoraKit {

/// A bluetoothd of our own on a private bus, in this process and on its run loop. It exports the
/// objects it is given, records the calls made to it, and answers each at once, with nothing, or as
/// it was told for that method.
class FakeBluez final : public RunLoopSource {
public:
    static constexpr const char* hci0 = "/org/bluez/hci0";
    static constexpr const char* hci0Address = "00:AA:01:00:00:42";
    static constexpr const char* pen = "/org/bluez/hci0/dev_00_11_22_33_44_55";
    static constexpr const char* penAddress = "00:11:22:33:44:55";

    /// What a method does besides being recorded; it answers by `reply…`, now or later.
    using Method = std::function<void(const std::string& path)>;

    /// Becomes org.bluez; where there is one already it is a stranger on the bus.
    explicit FakeBluez(const std::string& busAddress);
    ~FakeBluez() override;  // bluetoothd is gone
    FakeBluez(const FakeBluez&) = delete;
    FakeBluez& operator=(const FakeBluez&) = delete;

    // What it exports
    void add(const std::string& path, const std::string& interface, const Properties& properties);
    /// Known, but not signalled: BlueZ's InterfacesAdded may come later than what it leads to.
    void addSilently(const std::string& path, const std::string& interface,
                     const Properties& properties);
    void remove(const std::string& path, const std::string& interface);
    void change(const std::string& path, const std::string& interface, const Properties& changed,
                const std::vector<std::string>& invalidated = {});
    void addAdapter(const std::string& path = hci0, const std::string& address = hci0Address,
                    bool isPowered = true);
    void switchAdapter(bool on);
    static Properties penProperties(const Properties& more = {});
    void addPen(const Properties& more = {});
    void changePen(const Properties& changed, const std::vector<std::string>& invalidated = {});
    void changeValue(const std::string& characteristic, const Data& value);
    void endLink();

    // Calls
    std::vector<std::string> calls;  // names of methods, but for GetManagedObjects
    std::string lastPath;
    Properties lastOptions;
    /// Calls of this method wait until `reply…`.
    void hold(const std::string& member);
    /// Null makes it answer again as it does by itself.
    void on(const std::string& member, Method method);
    void reply(const std::string& member);
    void replyBytes(const std::string& member, const Data& value);
    void replyError(const std::string& member, const char* name, const char* text);
    std::size_t count(const std::string& member) const;
    /// Sends what does not reach the radio, such as the answer to another client's call.
    void answerSomebodyElse();

    // As bluetoothd does with what a caller exports
    /// Calls a method of who has called last; what comes of it is among the answers: bytes in
    /// hexadecimal, nothing, or the error's name.
    void ask(const std::string& path, const char* interface, const char* member,
             const Arguments& arguments);
    std::vector<std::string> answers;
    std::vector<std::string> told;  // values, as "/inkora/pen/service/colour 01ff8000"
    const Objects& objects() const { return objects_; }

    // What any user of the bus may do
    std::string caller;     // who has called last, by unique name
    std::string addressee;  // whom signals go to, and nobody else; empty for all
    void claimThatOwnerChanged(const std::string& oldOwner, const std::string& newOwner);

    // RunLoopSource
    int descriptor() const override;
    Interest interest() const override;
    std::optional<double> deadline() const override;
    void service() override;

private:
    using Message = std::shared_ptr<sd_bus_message>;

    int received(sd_bus_message* message);
    void recordValue(sd_bus_message* message);
    void setProperty(sd_bus_message* message);
    void sendObjects();
    void emit(const std::string& path, const char* interface, const char* member,
              const Arguments& arguments);
    Message takeHeld(const std::string& member);
    void send(sd_bus_message* message, const Arguments& arguments);

    std::shared_ptr<sd_bus> bus_;
    Objects objects_;
    std::map<std::string, Method> methods_;
    std::map<std::string, std::vector<Message>> held_;
};

}  // namespace InkoraKit
