#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/CBUUID.h>
#include <InkoraKit/platform/Data.h>
#include <InkoraKit/platform/NSError.h>

#include <cstdint>
#include <memory>
#include <optional>

namespace InkoraKit {

/// A characteristic of a virtual peripheral: a value, and a script of what reads are answered with.
/// Notifications are sent by the peripheral. Belongs to the run loop's thread.
class INKORA_EXPORT VirtualCharacteristic {
public:
    /// Properties, as the bits of the Bluetooth Core Specification, Vol 3, Part G, 3.3.1.1.
    static constexpr std::uint32_t readable = 0x02;
    static constexpr std::uint32_t notifiable = 0x10;
    static constexpr std::uint32_t indicatable = 0x20;

    /// @param value what reads are answered with until something else is set
    /// @param properties the bits above, and any others of theirs
    explicit VirtualCharacteristic(const CBUUID& uuid, std::optional<Data> value = Data(),
                                   std::uint32_t properties = readable | notifiable);

    ~VirtualCharacteristic();

    /// Neither copied nor moved: its peripheral knows it by its address.
    VirtualCharacteristic(const VirtualCharacteristic&) = delete;
    VirtualCharacteristic& operator=(const VirtualCharacteristic&) = delete;

    /// The type, by which hosts find it.
    const CBUUID& uuid() const noexcept;

    /// Reading one that is not readable fails, and so does subscribing to one that neither notifies
    /// nor indicates.
    std::uint32_t properties() const noexcept;

    /// What reads are answered with. Where it is absent they succeed, yet bring no value.
    const std::optional<Data>& value() const noexcept;
    void setValue(std::optional<Data> value);

    /// Scripts the answer of one read, in place of the value. Scripted answers are used up in the
    /// order in which they were added.
    void answerNextRead(std::optional<Data> value);
    void failNextRead(const NSError& error);

    /// Seconds that a read takes beyond the peripheral's answer delay, 0 at first. One that
    /// outlasts the link is a read never answered.
    double readDelay() const noexcept;
    void setReadDelay(double seconds);

private:
    friend class VirtualLink;

    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace InkoraKit
