#pragma once

#include "platform/bus/MessageReader.h"
#include "platform/bus/MessageWriter.h"

#include <memory>
#include <string>

struct sd_bus_message;

namespace InkoraKit {

/// A call of a method that this process exports, answered once: now, or later by a copy. One that
/// is never answered runs into the caller's time limit.
class IncomingCall {
public:
    explicit IncomingCall(sd_bus_message* message);

    std::string sender() const { return body().sender(); }
    std::string path() const { return body().path(); }
    std::string interface() const;
    std::string member() const { return body().member(); }
    /// The arguments, from the first one on that no reader has taken yet.
    MessageReader body() const { return MessageReader(message_.get()); }

    void answer(const Arguments& arguments = {}) const;
    void refuse(const char* errorName, const std::string& text) const;

private:
    std::shared_ptr<sd_bus_message> message_;
};

}  // namespace InkoraKit
