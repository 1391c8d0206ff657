#pragma once

#include "platform/bus/Properties.h"

#include <cstdint>
#include <string>
#include <vector>

struct sd_bus_message;

namespace InkoraKit {

/// Reads the body of a D-Bus message, argument by argument. Where the message holds something else
/// than what is asked for, the result is empty and so are all later ones, and the log says so; a
/// variant of a type that nobody needs is skipped.
class MessageReader {
public:
    /// Borrows the message, which outlives the reader.
    explicit MessageReader(sd_bus_message* message) : message_(message) {}

    std::string sender() const;    // the unique name that the bus has put down, or the bus's own
    std::uint64_t serial() const;  // by which the sender numbers its messages
    std::string path() const;      // of the object that sent a signal
    std::string member() const;    // the signal's name

    std::string readText();                // s or o
    std::vector<std::string> readTexts();  // as or ao
    Data readBytes();                      // ay
    Properties readProperties();           // a{sv}
    Interfaces readInterfaces();           // a{sa{sv}}
    Objects readObjects();                 // a{oa{sa{sv}}}

private:
    Variant readVariant();
    void refuse(const char* expected);
    template <class Map, class ReadKey, class ReadValue>
    Map readMap(const char* entry, ReadKey readKey, ReadValue readValue);

    sd_bus_message* message_;
    bool isRefused_ = false;  // from the first argument on that is not what was asked for
};

}  // namespace InkoraKit
