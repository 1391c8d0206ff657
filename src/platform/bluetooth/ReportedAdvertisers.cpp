#include "platform/bluetooth/ReportedAdvertisers.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace InkoraKit {
namespace {

// Whatever part of the identifiers differs, the multiplication carries it to the top (by the golden
// ratio, as in Fibonacci hashing).
std::size_t shelfOf(const UUID& identifier) {
    const std::uint64_t hash = std::hash<UUID>{}(identifier);
    return static_cast<std::size_t>((hash * 0x9E3779B97F4A7C15u) >> 56);
}

}  // namespace

ReportedAdvertisers::Name ReportedAdvertisers::digestOf(const std::string& name) {
    return static_cast<Name>(std::hash<std::string>{}(name)) | 2u;  // neither 0 nor 1
}

bool ReportedAdvertisers::isNews(const UUID& identifier, const std::optional<std::string>& name) {
    Name& known = nameOf(identifier);
    const Name before = known;
    if (name) {
        known = digestOf(*name);
    } else if (before == neverReported) {
        known = reportedWithout;
    }
    return known != before;
}

ReportedAdvertisers::Name& ReportedAdvertisers::nameOf(const UUID& identifier) {
    const std::size_t number = shelfOf(identifier);
    const auto placeIn = [&](auto& shelf) {
        const auto place = std::lower_bound(shelf.begin(), shelf.end(), identifier.bytes(),
                                            [](const Entry& entry, const UUID::Bytes& sought) {
                                                return entry.identifier < sought;
                                            });
        return std::pair(place, place != shelf.end() && place->identifier == identifier.bytes());
    };
    if (const auto [known, isThere] = placeIn(present_[number]); isThere) return known->name;

    if (presentCount_++ == longestGeneration) {
        earlier_ = std::exchange(present_, {});
        presentCount_ = 1;
    }
    const auto [earlier, wasThere] = placeIn(earlier_[number]);
    auto& shelf = present_[number];
    if (shelf.size() == shelf.capacity()) shelf.reserve(shelf.size() + 16);
    const Entry entry{identifier.bytes(), wasThere ? earlier->name : neverReported};
    return shelf.insert(placeIn(shelf).first, entry)->name;
}

void ReportedAdvertisers::clear() {
    present_ = {};
    earlier_ = {};
    presentCount_ = 0;
}

}  // namespace InkoraKit
