#pragma once

#include <InkoraKit/platform/Data.h>

#include <cstdint>
#include <optional>

namespace InkoraKit {

/// Tells the notifications of one characteristic from what else BlueZ signals as its value.
///
/// BlueZ signals a value once for each client that has subscribed, to all of them, and what any
/// client reads as well (5.66 and 5.82). Nothing in a signal tells these apart, but bluetoothd
/// numbers all that it sends: copies of a value follow each other without a gap, and the answer to
/// somebody else's read, which never comes here, leaves one right after the value. Where that does
/// not decide:
///
/// - A value unlike the last one is told at once, even if it may be what somebody else has read: a
///   value told for nothing is better than one lost.
/// - Equal values without a gap are one, if somebody may have subscribed since the last that came
///   alone; to come so close together on their own, a peripheral had to send them within the time
///   of one call over the bus.
class ValueSieve {
public:
    using Serial = std::uint64_t;

    /// A subscription begins or ends.
    void begin(bool isAlone) {
        copies_ = isAlone ? 1 : unknown;
        held_.reset();
    }

    /// A message of bluetoothd has come: each that comes, in order, before anything else is made of
    /// it. Answers a value held back until now that is a notification after all.
    std::optional<Data> heard(Serial serial);

    /// The message just heard is a signal of this value, which is answered if it is a notification
    /// for sure.
    std::optional<Data> signalled(const Data& value);

    /// A value known to be a notification or one of its copies.
    std::optional<Data> notified(const Data& value, Serial serial);

    /// We have read this value.
    void read(const Data& value) { last_ = value; }

    /// Whether another message, such as the answer to a call, would decide what is open.
    bool isUndecided() const { return held_ || (count_ > 0 && copies_ != 1); }
    /// It was called for, and all that bluetoothd sent before it was heard. Answers a value that is
    /// still held back, since the answer was not bluetoothd's.
    std::optional<Data> decide();

private:
    static constexpr int unknown = 0;

    void closeRun();

    Serial serial_ = 0;         // of the last message; 0 before the first
    std::optional<Data> last_;  // value, told or read
    std::optional<Data> held_;  // signalled by the last message
    int copies_ = unknown;      // of each value

    // A run: notifications that are equal and follow each other without a gap
    Data run_;
    int count_ = 0;
    Serial end_ = 0;
    bool isFollowed_ = false;  // by a message that came here, so that it was no read
};

}  // namespace InkoraKit
