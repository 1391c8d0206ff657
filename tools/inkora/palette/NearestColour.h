#pragma once

#include "palette/Colour.h"

#include <cstddef>
#include <vector>

namespace InkoraTool {

/// Finds the one of some colours that is at the least distance from another in OKLab, the
/// difference that CSS Color Module Level 4 calls deltaE OK.
class NearestColour {
public:
    explicit NearestColour(const std::vector<Colour>& colours);

    /// @return its position among the colours, the first one of equals
    std::size_t operator()(const Colour& colour) const;

private:
    /// Euclidean distances in OKLab are about as large as they look.
    struct Lab {
        double lightness;
        double a;
        double b;
    };
    static Lab labOf(const Colour& colour);

    std::vector<Lab> labs_;
};

}  // namespace InkoraTool
