#include "Table.h"

#include "Bars.h"

#include <cmath>
#include <cstdio>
#include <optional>

namespace InkoraKit {
namespace {

struct Workload {
    std::string_view name;
    std::string_view title;
    double unit = 1;  // of the figures shown, in that of those measured
};

constexpr double microsecond = 1'000;
constexpr Workload workloads[] = {
    {"parse", "Parse to a value and destroy it, µs", microsecond},
    {"compact", "Compact text, µs", microsecond},
    {"pretty", "Pretty text, µs", microsecond},
    {"lookup-by-key", "Three steps, each a key, ns"},
    {"lookup-late-key", "Three keys, the second the 150th of 184, ns"},
    {"lookup-by-index", "Three steps, each a position, ns"},
    {"lookup-mixed", "Three steps: key, position, key, ns"},
    {"walk", "Walk the whole tree, µs", microsecond},
    {"change", "Copy the document, then change one leaf, µs", microsecond},
    {"change-bottom", "The same with a leaf 481 levels down (no bar), µs", microsecond},
    {"merge", "Copy the document, then merge a small patch, µs", microsecond},
    {"memory", "Live memory, bytes for each byte of text"},
    {"copy", "Plain copy, in a process that has never started a thread, ns"},
    {"copy-threaded", "Plain copy, beside another thread, ns"},
};

/// Three digits, as many of them behind the point as it takes.
std::string shown(double figure) {
    char text[32];
    const int decimals = figure < 9.995 ? 2 : figure < 99.95 ? 1 : 0;
    std::snprintf(text, sizeof text, "%.*f", decimals, figure);
    return text;
}

std::string shownAsRatio(double ratio) {
    std::string text = "(";
    text += shown(ratio);
    return text += "×)";
}

/// Pads by characters: `printf` counts bytes.
std::string padded(std::string text, std::size_t width) {
    std::size_t characters = 0;
    for (const char byte : text) characters += (byte & 0xC0) != 0x80;
    if (characters < width) text.append(width - characters, ' ');
    return text;
}

constexpr std::size_t rowWidth = 15;
constexpr std::size_t columnWidth = 18;

class WorkloadTable {
public:
    WorkloadTable(const Report& report, const Workload& workload)
        : report_(report), workload_(workload) {
        for (const std::string& library : report.libraries) {
            for (const Document& document : report.documents) {
                if (!figure(document, library)) continue;
                columns_.push_back(library);
                break;
            }
        }
    }

    void print() const {
        if (columns_.empty()) return;
        std::printf("\n%s\n", std::string(workload_.title).c_str());
        printHeading();
        for (const Document& document : report_.documents) printRow(document);
        printMeans();
        printBars();
    }

private:
    std::optional<double> figure(const Document& document, const std::string& library) const {
        return report_.results.figure(workload_.name, document.name, library);
    }
    std::optional<double> ours(const Document& document) const {
        return figure(document, report_.libraries.front());
    }

    void printHeading() const {
        std::string line = padded({}, rowWidth);
        for (const std::string& column : columns_) line += padded(column, columnWidth);
        std::printf("%s\n", line.c_str());
    }

    void printRow(const Document& document) const {
        std::string line = padded(document.name, rowWidth);
        bool isEmpty = true;
        for (const std::string& column : columns_) {
            std::string cell;
            if (const auto measured = figure(document, column)) {
                isEmpty = false;
                cell = shown(*measured / workload_.unit);
                if (column != report_.libraries.front() && ours(document)) {
                    cell += " ";
                    cell += shownAsRatio(*measured / *ours(document));
                }
            }
            line += padded(cell, columnWidth);
        }
        if (!isEmpty) std::printf("%s\n", line.c_str());
    }

    void printMeans() const {
        if (columns_.size() < 2) return;
        std::string line = padded("geometric mean", rowWidth);
        for (const std::string& column : columns_) {
            double sum = 0;
            int count = 0;
            for (const Document& document : report_.documents) {
                const auto measured = figure(document, column);
                if (!measured || !ours(document)) continue;
                sum += std::log(*measured / *ours(document));
                ++count;
            }
            const bool isShown = count > 0 && column != report_.libraries.front();
            line +=
                padded(isShown ? shownAsRatio(std::exp(sum / count)) : std::string(), columnWidth);
        }
        std::printf("%s\n", line.c_str());
    }

    static const char* label(Bar::Kind kind) {
        switch (kind) {
            case Bar::Kind::bar:
                return "bar";
            case Bar::Kind::goal:
                return "goal";
            case Bar::Kind::note:
                return "note";
        }
        return "";
    }
    static const char* verdict(const Bar& bar, const std::optional<Figure>& measured) {
        if (!measured) return "not measured";
        if (bar.kind == Bar::Kind::note) return "";
        return bar.isReachedBy(measured->value) ? "holds" : "MISSED";
    }

    void printBars() const {
        for (const Bar& bar : bars()) {
            if (bar.workload != workload_.name) continue;
            const auto measured = bar.figure(report_);
            std::string line = padded(std::string("  ") + label(bar.kind), 8);
            line += padded(bar.text, 42) + padded(verdict(bar, measured), 8);
            if (measured) line += shown(measured->value);
            if (measured && !measured->row.empty()) line += " (" + measured->row + ")";
            std::printf("%s\n", line.c_str());
        }
    }

    const Report& report_;
    const Workload& workload_;
    std::vector<std::string> columns_;
};

}  // namespace

void printTables(const Report& report) {
    for (const Workload& workload : workloads) WorkloadTable(report, workload).print();
}

}  // namespace InkoraKit
