#include "platform/foundation/objects/CocoaErrorCodes.h"
#include "platform/radios/trace/Trace.h"
#include "platform/radios/trace/TraceFields.h"

#include <InkoraKit/platform/JSONSerialization.h>

#include <map>
#include <utility>

namespace InkoraKit {
namespace {

template <class Found, class Read>
std::vector<Found> listOf(TraceFields& fields, std::string_view key, Read read) {
    std::vector<Found> found;
    fields.each(key, [&](TraceFields& one) { found.push_back(read(one)); });
    return found;
}

TraceEvent state(TraceFields& fields) {
    const CBManagerState state = fields.state("state");
    const CBManagerStateReason reason = fields.reason("reason");
    const bool canReadRSSI = !fields.flag("noRSSI");
    return [=](RadioListener& listener, TraceAnswers& answers) {
        answers = {reason, {.canReadRSSI = canReadRSSI}};
        listener.adapterStateChanged(state);
    };
}

TraceEvent sighted(TraceFields& fields) {
    Sighting sighting{.identifier = fields.peripheral(),
                      .name = fields.optionalText("name"),
                      .advertisement = {.localName = fields.optionalText("localName"),
                                        .serviceUUIDs = fields.uuids("services"),
                                        .manufacturerData = fields.optionalBytes("manufacturer"),
                                        .serviceData = fields.bytesByUUID("serviceData"),
                                        .txPowerLevel = fields.optionalInteger("txPower"),
                                        .isConnectable = fields.optionalFlag("connectable")},
                      .rssi = fields.optionalInteger("rssi").value_or(unknownRSSI),
                      .reportEvenIfKnown = fields.flag("again")};
    return [sighting = std::move(sighting)](RadioListener& listener, TraceAnswers&) {
        listener.sighted(sighting);
    };
}

TraceEvent name(TraceFields& fields) {
    return [peripheral = fields.peripheral(), name = fields.text("name")](
               RadioListener& listener, TraceAnswers&) { listener.nameChanged(peripheral, name); };
}

TraceEvent connected(TraceFields& fields) {
    return [peripheral = fields.peripheral()](RadioListener& listener, TraceAnswers&) {
        listener.connected(peripheral);
    };
}

TraceEvent connectionFailed(TraceFields& fields) {
    return [peripheral = fields.peripheral(), error = fields.error()](RadioListener& listener,
                                                                      TraceAnswers&) {
        listener.connectionFailed(peripheral, error);
    };
}

TraceEvent disconnected(TraceFields& fields) {
    return
        [peripheral = fields.peripheral(), error = fields.optionalError()](
            RadioListener& listener, TraceAnswers&) { listener.disconnected(peripheral, error); };
}

TraceEvent services(TraceFields& fields) {
    const UUID peripheral = fields.peripheral();
    auto found = listOf<RemoteService>(fields, "services", [](TraceFields& one) {
        return RemoteService{one.handle(), one.uuid("uuid"), !one.flag("secondary")};
    });
    return [=, found = std::move(found), error = fields.optionalError()](RadioListener& listener,
                                                                         TraceAnswers&) {
        listener.servicesDiscovered(peripheral, found, error);
    };
}

TraceEvent characteristics(TraceFields& fields) {
    const UUID peripheral = fields.peripheral();
    const AttributeHandle service = fields.handle();
    auto found = listOf<RemoteCharacteristic>(fields, "characteristics", [](TraceFields& one) {
        return RemoteCharacteristic{one.handle(), one.uuid("uuid"), one.number("properties")};
    });
    return [=, found = std::move(found), error = fields.optionalError()](RadioListener& listener,
                                                                         TraceAnswers&) {
        listener.characteristicsDiscovered(peripheral, service, found, error);
    };
}

TraceEvent servicesInvalidated(TraceFields& fields) {
    return [peripheral = fields.peripheral(), services = fields.numbers("services")](
               RadioListener& listener, TraceAnswers&) {
        listener.servicesInvalidated(peripheral, services);
    };
}

TraceEvent read(TraceFields& fields) {
    return [peripheral = fields.peripheral(), handle = fields.handle(),
            value = fields.optionalBytes("value"),
            error = fields.optionalError()](RadioListener& listener, TraceAnswers&) {
        listener.valueRead(peripheral, handle, value, error);
    };
}

TraceEvent notified(TraceFields& fields) {
    return [peripheral = fields.peripheral(), handle = fields.handle(),
            value = fields.optionalBytes("value")](RadioListener& listener, TraceAnswers&) {
        listener.valueNotified(peripheral, handle, value);
    };
}

TraceEvent subscription(TraceFields& fields) {
    return [peripheral = fields.peripheral(), handle = fields.handle(), on = fields.flag("on"),
            error = fields.optionalError()](RadioListener& listener, TraceAnswers&) {
        listener.subscriptionChanged(peripheral, handle, on, error);
    };
}

TraceEvent rssi(TraceFields& fields) {
    return [peripheral = fields.peripheral(), rssi = fields.optionalInteger("rssi"),
            error = fields.optionalError()](RadioListener& listener, TraceAnswers&) {
        listener.rssiRead(peripheral, rssi, error);
    };
}

const std::map<std::string, TraceEvent (*)(TraceFields&), std::less<>> events = {
    {"state", state},
    {"sighted", sighted},
    {"name", name},
    {"connected", connected},
    {"connectionFailed", connectionFailed},
    {"disconnected", disconnected},
    {"services", services},
    {"characteristics", characteristics},
    {"servicesInvalidated", servicesInvalidated},
    {"read", read},
    {"notified", notified},
    {"subscription", subscription},
    {"rssi", rssi},
};

/// What commands name besides themselves.
enum class Names { nothing, peripheral, handle };
const std::map<std::string, Names, std::less<>> commands = {
    {"scan", Names::nothing},
    {"stopScan", Names::nothing},
    {"connect", Names::peripheral},
    {"disconnect", Names::peripheral},
    {"discoverServices", Names::peripheral},
    {"discoverCharacteristics", Names::handle},
    {"read", Names::handle},
    {"subscribe", Names::handle},
    {"unsubscribe", Names::handle},
    {"readRSSI", Names::peripheral},
};

TraceCommand commandOf(std::string name, TraceFields& fields) {
    const auto known = commands.find(name);
    if (known == commands.end()) throw TraceFault("there is no command '" + name + "'");
    TraceCommand command{std::move(name)};
    if (known->second != Names::nothing) command.peripheral = fields.peripheral();
    if (known->second == Names::handle) command.handle = fields.handle();
    return command;
}

TraceEvent eventOf(const std::string& name, TraceFields& fields) {
    const auto known = events.find(name);
    if (known == events.end()) throw TraceFault("there is no event '" + name + "'");
    return known->second(fields);
}

void checkVersion(TraceFields& fields) {
    const auto version = fields.optionalInteger("inkoraTrace");
    if (!version) throw TraceFault("this is no trace: the first line tells no version");
    if (version != traceVersion)
        throw TraceFault("a trace of version " + std::to_string(*version) + ", of which only " +
                         std::to_string(traceVersion) + " is known");
}

TraceEntry entryOf(TraceFields& fields, std::size_t line, double earliest) {
    TraceEntry entry{line, fields.time(), TraceEnd()};
    if (entry.at < earliest) throw TraceFault("earlier than the line before");
    if (auto command = fields.optionalText("do"))
        entry.what = commandOf(std::move(*command), fields);
    else if (const auto event = fields.optionalText("event"))
        entry.what = eventOf(*event, fields);
    else if (!fields.flag("end"))
        throw TraceFault("neither a command nor an event");
    return entry;
}

/// Takes a line from the text, which must not be empty. Only the end of a file may cut one off.
std::string_view takeLine(std::string_view& text) {
    const auto end = text.find('\n');
    if (end == std::string_view::npos) throw TraceFault("the trace is cut off in this line");
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end + 1);
    return line;
}

Dictionary membersOf(std::string_view line) {
    try {
        if (const auto members = JSONSerialization::jsonObject(line).as<Dictionary>())
            return *members;
    } catch (const NSError&) {
    }
    throw TraceFault("no JSON object");
}

bool isWhole(const Trace& trace) {
    return !trace.empty() && std::holds_alternative<TraceEnd>(trace.back().what);
}

NSError traceError(std::size_t line, const std::string& fault) {
    return NSError(
        NSCocoaErrorDomain, propertyListReadCorruptError,
        {{NSLocalizedDescriptionKey, "line " + std::to_string(line) + ": " + fault + '.'}});
}

}  // namespace

Trace readTrace(std::string_view text) {
    Trace trace;
    std::size_t line = 0;
    double earliest = 0;
    try {
        while (!text.empty() || line == 0) {
            ++line;
            if (isWhole(trace)) throw TraceFault("something follows the end");
            if (text.empty()) throw TraceFault("the file is empty");
            const Dictionary members = membersOf(takeLine(text));
            TraceFields fields(members);
            if (line == 1) {
                checkVersion(fields);
            } else {
                trace.push_back(entryOf(fields, line, earliest));
                earliest = trace.back().at;
            }
            fields.expectNothingElse();
        }
        ++line;
        if (!isWhole(trace)) throw TraceFault("the trace is cut off before its end");
    } catch (const TraceFault& fault) {
        throw traceError(line, fault.what());
    }
    return trace;
}

UUID identifierOf(std::uint32_t number) {
    UUID::Bytes bytes{};
    for (std::size_t i = 0; i < 4; ++i)
        bytes[12 + i] = static_cast<std::uint8_t>(number >> (24 - 8 * i));
    return UUID(bytes);
}

std::optional<std::uint32_t> numberOf(const UUID& identifier) {
    std::uint32_t number = 0;
    for (std::size_t i = 12; i < 16; ++i) number = number << 8 | identifier.bytes()[i];
    if (number == 0 || identifierOf(number) != identifier) return std::nullopt;
    return number;
}

std::string TraceCommand::description() const {
    std::string text = name;
    if (peripheral) {
        const auto number = numberOf(*peripheral);
        text += ' ' + (number ? std::to_string(*number) : peripheral->uuidString());
    }
    if (handle) text += ' ' + std::to_string(*handle);
    return text;
}

}  // namespace InkoraKit
