#pragma once

#include <InkoraKit/platform/UUID.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace InkoraKit {

/// Whom a scan has reported, and by what name, in some 22 bytes each.
///
/// A scan may last for ever, so the crowd that is remembered has a limit: an advertiser that keeps
/// silent while 24,000 others are heard may be forgotten, and is then news again.
class ReportedAdvertisers {
public:
    /// Answers whether an advertiser that was heard is to be reported, and counts it as reported:
    /// it was not yet, or has another name than it had then. No name is no news.
    bool isNews(const UUID& identifier, const std::optional<std::string>& name);

    void clear();

private:
    using Name = std::uint32_t;  // a digest

    struct Entry {
        UUID::Bytes identifier;
        Name name;
    };
    // Small sorted lists, which cost little to add to and never need to move all at once.
    using Shelves = std::array<std::vector<Entry>, 256>;

    static constexpr std::size_t longestGeneration = 24'000;
    static constexpr Name neverReported = 0;
    static constexpr Name reportedWithout = 1;
    static Name digestOf(const std::string& name);
    /// Of an advertiser that from now on is known.
    Name& nameOf(const UUID& identifier);

    // Who is heard again moves on from the earlier generation to the present one.
    Shelves present_;
    Shelves earlier_;
    std::size_t presentCount_ = 0;
};

}  // namespace InkoraKit
