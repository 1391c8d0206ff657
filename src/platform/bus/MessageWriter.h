#pragma once

#include "platform/bus/Properties.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

struct sd_bus_message;

namespace InkoraKit {

/// Writes the body of a D-Bus message, argument by argument. From the first on that cannot be
/// written (a path that is none, a text that is no UTF-8) nothing is.
class MessageWriter {
public:
    /// Borrows the message, which outlives the writer.
    explicit MessageWriter(sd_bus_message* message) : message_(message) {}

    void write(const std::string& text);                // s
    void write(const ObjectPath& path);                 // o
    void write(const std::vector<std::string>& texts);  // as
    void write(const Data& bytes);                      // ay
    void write(const Variant& value);                   // v; what stands for other types: an i
    void write(const Properties& properties);           // a{sv}
    void write(const Interfaces& interfaces);           // a{sa{sv}}
    void write(const Objects& objects);                 // a{oa{sa{sv}}}

    /// Negative, an error's number, once something could not be written.
    int result() const { return result_; }

private:
    template <class Fill>
    void within(char kind, const std::string& contents, Fill fill);
    template <class Entry>
    void writeEntry(char keyType, const Entry& entry);
    template <class Map>
    void writeMap(const std::string& entry, const Map& map);
    void writeBasic(char type, const void* value);
    void writeContents(const Variant& value);

    sd_bus_message* message_;
    int result_ = 0;
};

/// Fills in the body of a message; empty for none.
using Arguments = std::function<void(MessageWriter&)>;

/// These, in their order.
template <class... Each>
Arguments arguments(Each... each) {
    return [... each = std::move(each)](MessageWriter& writer) { (writer.write(each), ...); };
}

}  // namespace InkoraKit
