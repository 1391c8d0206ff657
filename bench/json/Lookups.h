#pragma once

#include <cstddef>
#include <string_view>
#include <tuple>

namespace InkoraKit {

/// Three steps from a document to an integer. Each is a key or a position by its type, so that
/// nothing but the library's own work is done at each.
template <class A, class B, class C>
struct Lookup {
    std::string_view workload;
    std::string_view document;
    A first;
    B second;
    C third;
};
template <class A, class B, class C>
Lookup(std::string_view, std::string_view, A, B, C) -> Lookup<A, B, C>;

using namespace std::string_view_literals;
using Position = std::size_t;

inline constexpr std::tuple lookups = {
    Lookup{"lookup-by-key"sv, "citm_catalog"sv, "events"sv, "138586341"sv, "id"sv},
    Lookup{"lookup-late-key"sv, "citm_catalog"sv, "events"sv, "339420805"sv, "id"sv},
    Lookup{"lookup-by-key"sv, "settings"sv, "layers"sv, "canvas"sv, "shortcut"sv},
    Lookup{"lookup-by-index"sv, "grid"sv, Position{11}, Position{7}, Position{13}},
    Lookup{"lookup-mixed"sv, "twitter"sv, "statuses"sv, Position{50}, "id"sv},
    Lookup{"lookup-mixed"sv, "citm_catalog"sv, "performances"sv, Position{100}, "id"sv},
};

}  // namespace InkoraKit
