#pragma once

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace InkoraKit {

/// The figures that were measured, by workload, document and library.
class Results {
public:
    void add(const std::string& workload, const std::string& document, const std::string& library,
             double figure) {
        figures_[workload][document][library].push_back(figure);
    }

    /// The median, if there is any figure.
    std::optional<double> figure(std::string_view workload, std::string_view document,
                                 std::string_view library) const {
        const auto* const documents = find(figures_, workload);
        const auto* const byLibrary = documents ? find(*documents, document) : nullptr;
        const auto* const all = byLibrary ? find(*byLibrary, library) : nullptr;
        if (!all) return std::nullopt;
        std::vector<double> sorted = *all;
        std::sort(sorted.begin(), sorted.end());
        const std::size_t middle = sorted.size() / 2;
        return sorted.size() % 2 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
    }

private:
    template <class T>
    using ByName = std::map<std::string, T, std::less<>>;

    template <class T>
    static const T* find(const ByName<T>& entries, std::string_view name) {
        const auto entry = entries.find(name);
        return entry == entries.end() ? nullptr : &entry->second;
    }

    ByName<ByName<ByName<std::vector<double>>>> figures_;
};

}  // namespace InkoraKit
