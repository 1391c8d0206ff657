#pragma once

#include "platform/bluetooth/radio.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace InkoraKit {

/// What is wrong with a line of a trace.
struct TraceFault : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The members of a line, each to be taken once. What is missing or is not what it should be throws
/// a TraceFault.
class TraceFields {
public:
    /// @param members outlive this
    explicit TraceFields(const Dictionary& members) : members_(members) {}

    double time();
    UUID peripheral();
    AttributeHandle handle() { return number("handle"); }
    CBManagerState state(std::string_view key);
    CBManagerStateReason reason(std::string_view key);
    CBUUID uuid(std::string_view key);
    std::vector<CBUUID> uuids(std::string_view key);
    std::map<CBUUID, Data> bytesByUUID(std::string_view key);
    NSError error();
    std::optional<NSError> optionalError();

    std::string text(std::string_view key);
    std::optional<std::string> optionalText(std::string_view key);
    std::optional<Data> optionalBytes(std::string_view key);
    std::optional<int> optionalInteger(std::string_view key);
    std::uint32_t number(std::string_view key);
    std::vector<std::uint32_t> numbers(std::string_view key);
    bool flag(std::string_view key) { return optionalFlag(key).value_or(false); }
    std::optional<bool> optionalFlag(std::string_view key);

    /// Goes through a list of objects, which may be missing.
    void each(std::string_view key, const std::function<void(TraceFields&)>& take);

    void expectNothingElse() const;

private:
    const Any* take(std::string_view key);
    template <class Value>
    std::optional<Value> taken(std::string_view key, const char* what);

    const Dictionary& members_;
    std::size_t taken_ = 0;
};

/// The text of a state in a trace.
std::string_view stateName(CBManagerState state);

}  // namespace InkoraKit
