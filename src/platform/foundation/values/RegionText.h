#pragma once

#include <InkoraKit/platform/AnySlot.h>

#include "platform/foundation/values/Region.h"

#include <cstddef>
#include <cstring>
#include <new>

namespace InkoraKit {

/// A text that is written to a region while nobody knows yet how long it will be.
class RegionText {
public:
    /// @param mostAtOnce how many characters are written at most between looking for room
    RegionText(Region& region, std::size_t mostAtOnce) noexcept
        : region_(region), mostAtOnce_(mostAtOnce) {
        begin();
    }

    char* start() const noexcept { return start_; }

    /// @param to where to write on
    bool hasRoom(const char* to) const noexcept { return to <= last_; }
    /// Makes room for more, of which the region can tell from `toCome` how much to make.
    /// @return where to write on
    char* grow(const char* to, double toCome) {
        const auto written = static_cast<std::size_t>(to - start_);
        const char* const before = start_;
        region_.addPiece(sizeof(OwnerLink) + 2 * written + mostAtOnce_, toCome);
        begin();
        std::memcpy(start_, before, written);
        return start_ + written;
    }

    /// Leaves a text of that size in the region. Without that the room is used for something else.
    char* keep(std::size_t size) {
        new (region_.take(sizeof(OwnerLink) + size)) OwnerLink{&region_};
        return start_;
    }

private:
    void begin() noexcept {
        start_ = reinterpret_cast<char*>(region_.next()) + sizeof(OwnerLink);
        last_ = reinterpret_cast<char*>(region_.end()) - mostAtOnce_;
    }

    Region& region_;
    std::size_t mostAtOnce_;
    char* start_;
    char* last_;  // the last place from which there is room enough
};

}  // namespace InkoraKit
