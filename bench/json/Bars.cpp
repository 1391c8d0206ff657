#include "Bars.h"

#include <cmath>

namespace InkoraKit {
namespace {

using Kind = Bar::Kind;
using Limit = Bar::Limit;

constexpr std::size_t kilobyte = 1'000;
constexpr std::string_view penEvent = "small";

using Rows = std::function<bool(const Document&)>;
bool every(const Document&) {
    return true;
}
bool isPenEvent(const Document& document) {
    return document.name == penEvent;
}
Rows largerThan(std::size_t size) {
    return [size](const Document& document) { return document.text.size() > size; };
}

/// The peer's figure divided by ours.
std::optional<double> ratio(const Report& report, std::string_view workload,
                            std::string_view document, std::string_view peer) {
    const auto ours = report.results.figure(workload, document, report.libraries.front());
    const auto theirs = report.results.figure(workload, document, peer);
    if (!ours || !theirs) return std::nullopt;
    return *theirs / *ours;
}

std::vector<std::string> judgedPeers(const Report& report) {
    std::vector<std::string> peers;
    for (const std::string& library : report.libraries) {
        if (library != report.libraries.front() && isJudged(library)) peers.push_back(library);
    }
    return peers;
}

std::optional<Figure> meanRatio(const Report& report, std::string_view workload,
                                std::string_view peer) {
    double sum = 0;
    int count = 0;
    for (const Document& document : report.documents) {
        if (const auto times = ratio(report, workload, document.name, peer)) {
            sum += std::log(*times);
            ++count;
        }
    }
    if (count == 0) return std::nullopt;
    return Figure{std::exp(sum / count), {}};
}

/// The least of the ratios to these peers in these rows.
std::optional<Figure> leastRatio(const Report& report, std::string_view workload,
                                 const std::vector<std::string>& peers, const Rows& rows) {
    std::optional<Figure> least;
    for (const Document& document : report.documents) {
        if (!rows(document)) continue;
        for (const std::string& peer : peers) {
            const auto times = ratio(report, workload, document.name, peer);
            if (times && (!least || *times < least->value)) {
                least = Figure{*times, document.name + ", " + peer};
            }
        }
    }
    return least;
}

/// The geometric mean of all rows is at least so many times the peer's.
Bar mean(Kind kind, std::string workload, double times, std::string peer, std::string text) {
    return {
        workload,        kind,
        std::move(text), Limit::atLeast,
        times,           [=](const Report& report) { return meanRatio(report, workload, peer); }};
}

/// The same with the peer that is best in the mean.
Bar meanOfBest(Kind kind, std::string workload, double times, std::string text) {
    return {workload, kind, std::move(text), Limit::atLeast, times, [=](const Report& report) {
                std::optional<Figure> least;
                for (const std::string& peer : judgedPeers(report)) {
                    const auto found = meanRatio(report, workload, peer);
                    if (found && (!least || found->value < least->value)) {
                        least = Figure{found->value, peer};
                    }
                }
                return least;
            }};
}

/// Each of these rows is at least so many times the peer's, or of each peer's if none is named.
Bar eachRow(Kind kind, std::string workload, double times, std::string peer, Rows rows,
            std::string text) {
    return {workload, kind, std::move(text), Limit::atLeast, times, [=](const Report& report) {
                const auto peers =
                    peer.empty() ? judgedPeers(report) : std::vector<std::string>{peer};
                return leastRatio(report, workload, peers, rows);
            }};
}

/// Each of these rows is at most so much by itself.
Bar absolute(Kind kind, std::string workload, double most, Rows rows, std::string text) {
    return {workload, kind, std::move(text), Limit::atMost, most, [=](const Report& report) {
                std::optional<Figure> largest;
                for (const Document& document : report.documents) {
                    const auto figure =
                        report.results.figure(workload, document.name, report.libraries.front());
                    if (!figure || !rows(document)) continue;
                    if (!largest || *figure > largest->value) {
                        largest = Figure{*figure, document.name};
                    }
                }
                return largest;
            }};
}

/// Each of these rows is at most so many times the peer's.
Bar eachRowAtMost(Kind kind, std::string workload, double times, std::string peer, Rows rows,
                  std::string text) {
    return {workload, kind, std::move(text), Limit::atMost, times, [=](const Report& report) {
                auto figure = leastRatio(report, workload, {peer}, rows);
                if (figure) figure->value = 1 / figure->value;
                return figure;
            }};
}

/// Each of these rows takes at most so many times as long in one way as in another.
Bar eachWay(Kind kind, std::string workload, double times, std::string way, std::string other,
            std::string text) {
    return {workload, kind, std::move(text), Limit::atMost, times, [=](const Report& report) {
                std::optional<Figure> largest;
                for (const Document& document : report.documents) {
                    const auto figure = report.results.figure(workload, document.name, way);
                    const auto base = report.results.figure(workload, document.name, other);
                    if (!figure || !base) continue;
                    if (!largest || *figure / *base > largest->value) {
                        largest = Figure{*figure / *base, document.name};
                    }
                }
                return largest;
            }};
}

void addWriting(std::vector<Bar>& all, const std::string& workload, double times) {
    all.push_back(mean(Kind::bar, workload, times, "nlohmann",
                       "≥ " + std::string(times > 4.25 ? "4.3" : "4.2") + "× nlohmann, mean"));
    all.push_back(mean(Kind::bar, workload, 2.2, "RapidJSON", "≥ 2.2× RapidJSON, mean"));
    all.push_back(eachRow(Kind::bar, workload, 1, {}, every, "ahead of every peer, each document"));
    all.push_back(mean(Kind::goal, workload, 4.7, "nlohmann", "≥ 4.7× nlohmann, mean"));
}

void addLookup(std::vector<Bar>& all, const std::string& workload) {
    all.push_back(mean(Kind::bar, workload, 1.4, "nlohmann", "≥ 1.4× nlohmann"));
    all.push_back(eachRow(Kind::goal, workload, 1, {}, every, "≥ 1× the best peer, each document"));
    all.push_back(eachWay(Kind::bar, workload, 1.2, "InkoraKit places", "InkoraKit owning",
                          "places ≤ 1.2× of constant subscripts"));
}

std::vector<Bar> allBars() {
    std::vector<Bar> all = {
        mean(Kind::bar, "parse", 1, "simdjson DOM", "≥ 1× simdjson DOM, mean"),
        eachRow(Kind::bar, "parse", 0.85, "simdjson DOM", every,
                "≥ 0.85× simdjson DOM, each document"),
        eachRow(Kind::goal, "parse", 1, "simdjson DOM", every, "≥ 1× simdjson DOM, each document"),
        eachRow(Kind::goal, "parse", 1.25, "simdjson DOM", isPenEvent,
                "pen event ≤ 0.8× of simdjson DOM"),
    };
    addWriting(all, "compact", 4.3);
    addWriting(all, "pretty", 4.2);
    addLookup(all, "lookup-by-key");
    addLookup(all, "lookup-late-key");
    addLookup(all, "lookup-by-index");
    addLookup(all, "lookup-mixed");
    const std::vector<Bar> rest = {
        meanOfBest(Kind::bar, "walk", 1, "≥ 1× the best peer, mean"),
        eachRow(Kind::goal, "walk", 1, {}, every, "≥ 1× the best peer, each document"),
        eachRow(Kind::bar, "change", 300, {}, largerThan(100 * kilobyte),
                "≥ 300× the best peer, each over 100 KB"),
        eachRow(Kind::bar, "change", 3, {}, isPenEvent, "≥ 3× the best peer, pen event"),
        eachRow(Kind::goal, "change", 1000, {}, largerThan(100 * kilobyte),
                "≥ 1000× the best peer, each over 100 KB"),
        eachRow(Kind::goal, "change", 5, {}, isPenEvent, "≥ 5× the best peer, pen event"),
        absolute(Kind::bar, "copy", 5, every, "≤ 5 ns"),
        meanOfBest(Kind::bar, "merge", 8, "≥ 8× the best peer, mean"),
        meanOfBest(Kind::goal, "merge", 15, "≥ 15× the best peer, mean"),
        eachRow(Kind::note, "merge", 0, {}, every, "least, of each document and peer"),
        eachRowAtMost(Kind::bar, "memory", 1, "nlohmann", every, "≤ nlohmann, each document"),
        eachRowAtMost(Kind::bar, "memory", 1.6, "RapidJSON", largerThan(500 * kilobyte),
                      "≤ 1.6× RapidJSON, each over 500 KB"),
        absolute(Kind::bar, "memory", 5, isPenEvent, "≤ 5 on the pen event"),
        eachRowAtMost(Kind::goal, "memory", 1.25, "RapidJSON", largerThan(500 * kilobyte),
                      "≤ 1.25× RapidJSON, each over 500 KB"),
        absolute(Kind::bar, "copy-threaded", 15, every, "≤ 15 ns"),
    };
    all.insert(all.end(), rest.begin(), rest.end());
    return all;
}

}  // namespace

const std::vector<Bar>& bars() {
    static const std::vector<Bar> all = allBars();
    return all;
}

bool isJudged(std::string_view library) {
    return library != "Boost monotonic" && !library.starts_with("InkoraKit");
}

}  // namespace InkoraKit
