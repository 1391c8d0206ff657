#pragma once

#include <InkoraKit/JSON.h>

#include <nlohmann/json.hpp>

#include <optional>
#include <string_view>

namespace InkoraKit {

/// A JSON value that the kit's is held against: of another library, in a tree that copies copy in
/// full, with members in the order in which they were added.
using PlainJSON = nlohmann::ordered_json;

/// The value of a text in UTF-8, if it is one, nested no deeper than the kit reads.
std::optional<PlainJSON> parsePlainly(std::string_view text);

Type typeOf(const PlainJSON& plain);

/// Whether both are the same value, however one looks at it.
bool matches(const PlainJSON& plain, const JSON& json);

/// Ends the process, which is how a fuzzer knows, where a condition does not hold.
void require(bool condition, const char* what);

}  // namespace InkoraKit
