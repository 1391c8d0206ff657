#include "PlainJSON.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace InkoraKit {
namespace {

std::size_t depthOf(const PlainJSON& plain) {
    if (!plain.is_structured()) return 0;  // which would be its own only element
    std::size_t deepest = 0;
    for (const PlainJSON& element : plain) deepest = std::max(deepest, depthOf(element));
    return deepest + 1;
}

bool matchesNumber(const PlainJSON& plain, const JSON& json) {
    if (plain.is_number_integer() && plain.get<std::uint64_t>() != json.uIntValue()) return false;
    const double wanted = plain.get<double>();
    // A decimal keeps 38 digits, and may so be a step away from what all digits give.
    const bool isDecimal = json.object().slot().tag() == AnySlot::decimal;
    return json.doubleValue() == wanted ||
           (isDecimal && std::nextafter(json.doubleValue(), wanted) == wanted);
}

}  // namespace

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "not so: %s\n", what);
    std::abort();
}

std::optional<PlainJSON> parsePlainly(std::string_view text) {
    if (text.find('\0') != std::string_view::npos) return std::nullopt;  // else taken for the end
    auto plain = PlainJSON::parse(text, nullptr, false);
    if (plain.is_discarded() || depthOf(plain) > 512) return std::nullopt;
    return plain;
}

Type typeOf(const PlainJSON& plain) {
    using enum Type;
    constexpr std::array types{null, dictionary, array, string, bool_, number, number, number};
    return types.at(static_cast<std::size_t>(plain.type()));
}

bool matches(const PlainJSON& plain, const JSON& json) {
    if (json.type() != typeOf(plain)) return false;
    if (plain.is_boolean()) return json.bool_() == plain.get<bool>();
    if (plain.is_number()) return matchesNumber(plain, json);
    if (plain.is_string()) return json.stringView() == plain.get_ref<const std::string&>();
    if (plain.is_null()) return true;
    if (json.count() != plain.size()) return false;
    if (json.elements().size() + json.members().size() != plain.size()) return false;
    const bool isArray = plain.is_array();
    std::size_t position = 0;
    std::string absentKey = "?";
    auto member = json.begin();
    auto view = json.members().begin();
    for (const auto& [wantedKey, wanted] : plain.items()) {
        const auto& [key, value] = *member++;
        if (key != wantedKey || !matches(wanted, value)) return false;
        if (!((isArray ? json[position] : json[key]) == value)) return false;
        // What owns nothing shows each part where it is.
        if (&value != (isArray ? json.find(position) : json.find(key))) return false;
        if (isArray ? &value != &json.elements()[position]
                    : view->key != wantedKey || &value != &(*view++).value)
            return false;
        absentKey += wantedKey;
        ++position;
    }
    return !json[absentKey].exists() && !json[position].exists() && !json.find(absentKey) &&
           !json.find(position);
}

}  // namespace InkoraKit
