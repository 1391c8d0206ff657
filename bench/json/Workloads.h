#pragma once

#include "Library.h"
#include "LiveMemory.h"
#include "Lookups.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <concepts>
#include <deque>
#include <tuple>

namespace InkoraKit {

/// The workloads, written once for all libraries. An adapter has these static members; those from
/// `compact` on may be missing, as may the copy constructor of `Value`:
///
///     static constexpr std::string_view name;
///     using Value = …;                                   // owns a document
///     static Value parse(std::string_view text);         // throws when it fails
///     static Text compact(const Value& value);           // any type that owns bytes
///     static Text pretty(const Value& value);            // indented by two
///     static std::string_view view(const Text& text);
///     static void visit(const Value& value, auto& visitor);  // see Contents.h
///     static std::int64_t lookup(const Value& value, A a, B b, C c);
///     static void change(Value& value, std::span<const Step> place, int number);
///     static void merge(Value& value, const Value& patch);
///
/// One that is another way to read with a library that is there already says so, and is measured
/// where it walks and looks up only:
///
///     static constexpr bool isAnotherWay = true;
template <class Adapter>
class Workloads : public Library {
public:
    std::string_view name() const override { return Adapter::name; }

    std::map<std::string, Contents> examine(const Document& document) const override {
        std::map<std::string, Contents> found;
        const Value value = Adapter::parse(document.text);
        if constexpr (canWalk) {
            found["as read"] = contents(value);
            if constexpr (canWriteCompact) found["as written"] = reread(Adapter::compact(value));
            if constexpr (canWritePretty) {
                found["as written indented"] = reread(Adapter::pretty(value));
            }
            if constexpr (canChange) {
                if (!document.place.empty()) found["changed"] = changed(value, document.place);
                if (!document.bottom.empty()) {
                    found["changed at the bottom"] = changed(value, document.bottom);
                }
                found["as read, once a copy was changed"] = contents(value);
            }
            if constexpr (canMerge) {
                if (!document.patch.empty()) found["merged"] = merged(value, document.patch);
            }
        }
        return found;
    }

    double liveMemory(const Document& document) const override {
        return InkoraKit::liveMemory<Parsed>(document.text) /
               static_cast<double>(document.text.size());
    }

    void addBenchmarks(const std::vector<Document>& documents) override {
        for (const Document& document : documents) {
            const Parsed& parsed = parsed_.emplace_back(document.text);
            addReading(document);
            addWriting(document, parsed);
            addWalking(document, parsed);
            addChanging(document, parsed);
            addMerging(document, parsed);
        }
    }

    void addLookups(const std::vector<Document>& documents) override {
        if constexpr (requires(const Value& value) { Adapter::lookup(value, 0U, 0U, 0U); }) {
            const auto add = [&](const auto&... lookup) { (addLookup(documents, lookup), ...); };
            std::apply(add, lookups);
        }
    }

    void addPlainCopies(const std::vector<Document>& documents,
                        std::string_view workload) override {
        if constexpr (std::copy_constructible<Value>) {
            for (const Document& document : documents) {
                const Parsed& parsed = parsed_.emplace_back(document.text);
                add(workload, document, [&parsed] {
                    Value copy(parsed.value);
                    benchmark::DoNotOptimize(&copy);
                });
            }
        }
    }

private:
    using Value = typename Adapter::Value;

    /// In an object of its own, as some libraries' values cannot be moved.
    struct Parsed {
        explicit Parsed(std::string_view text) : value(Adapter::parse(text)) {}
        Value value;
    };

    static constexpr bool canWriteCompact = requires(const Value& value) {
        Adapter::compact(value);
    };
    static constexpr bool canWritePretty = requires(const Value& value) { Adapter::pretty(value); };
    static constexpr bool canWalk = requires(const Value& value, Tally& tally) {
        Adapter::visit(value, tally);
    };
    static constexpr bool canChange = requires(Value & value, const Document& document) {
        Adapter::change(value, document.place, 0);
    };
    static constexpr bool canMerge = requires(Value & value) { Adapter::merge(value, value); };

    static Contents contents(const Value& value) {
        Contents found;
        Adapter::visit(value, found);
        return found;
    }
    static Contents reread(const auto& text) {
        return contents(Adapter::parse(Adapter::view(text)));
    }
    static Contents changed(const Value& value, const std::vector<Step>& place) {
        Value copy(value);
        Adapter::change(copy, place, newNumber);
        return contents(copy);
    }
    static Contents merged(const Value& value, std::string_view patch) {
        Value copy(value);
        Adapter::merge(copy, Adapter::parse(patch));
        return contents(copy);
    }

    template <class Round>
    static void add(std::string_view workload, const Document& document, Round round) {
        const std::string benchmarkName =
            std::string(workload) + '/' + document.name + '/' + std::string(Adapter::name);
        benchmark::RegisterBenchmark(benchmarkName.c_str(), [round](benchmark::State& state) {
            // Once outside the measurement: the allocator may have to tidy up after another one.
            round();
            for ([[maybe_unused]] auto pass : state) {
                round();
                benchmark::ClobberMemory();
            }
        });
    }

    static void addReading(const Document& document) {
        if constexpr (requires { Adapter::isAnotherWay; }) return;
        add("parse", document, [&document] {
            const Value value = Adapter::parse(document.text);
            benchmark::DoNotOptimize(&value);
        });
    }

    static void addWriting(const Document& document, const Parsed& parsed) {
        if constexpr (canWriteCompact) {
            add("compact", document, [&parsed] {
                const auto text = Adapter::compact(parsed.value);
                benchmark::DoNotOptimize(&text);
            });
        }
        if constexpr (canWritePretty) {
            add("pretty", document, [&parsed] {
                const auto text = Adapter::pretty(parsed.value);
                benchmark::DoNotOptimize(&text);
            });
        }
    }

    static void addWalking(const Document& document, const Parsed& parsed) {
        if constexpr (canWalk) {
            add("walk", document, [&parsed] {
                Tally tally;
                Adapter::visit(parsed.value, tally);
                benchmark::DoNotOptimize(&tally);
            });
        }
    }

    static void addChanging(const Document& document, const Parsed& parsed) {
        if constexpr (canChange) {
            const auto addAt = [&](std::string_view workload, const std::vector<Step>& place) {
                if (place.empty()) return;
                add(workload, document, [&parsed, &place] {
                    Value copy(parsed.value);
                    Adapter::change(copy, place, newNumber);
                    benchmark::DoNotOptimize(&copy);
                });
            };
            addAt("change", document.place);
            addAt("change-bottom", document.bottom);
        }
    }

    void addMerging(const Document& document, const Parsed& parsed) {
        if constexpr (canMerge) {
            if (document.patch.empty()) return;
            const Parsed& patch = parsed_.emplace_back(document.patch);
            add("merge", document, [&parsed, &patch] {
                Value copy(parsed.value);
                Adapter::merge(copy, patch.value);
                benchmark::DoNotOptimize(&copy);
            });
        }
    }

    template <class A, class B, class C>
    void addLookup(const std::vector<Document>& documents, const Lookup<A, B, C>& lookup) {
        const auto document = std::find_if(
            documents.begin(), documents.end(),
            [&](const Document& candidate) { return candidate.name == lookup.document; });
        if (document == documents.end()) return;
        const Parsed& parsed = parsed_.emplace_back(document->text);
        add(lookup.workload, *document, [&parsed, &lookup] {
            std::int64_t number =
                Adapter::lookup(parsed.value, lookup.first, lookup.second, lookup.third);
            benchmark::DoNotOptimize(number);
        });
    }

    static constexpr int newNumber = 5;

    std::deque<Parsed> parsed_;  // benchmarks hold references to its elements
};

/// Enters the library with this adapter into the list.
template <class Adapter>
bool addLibrary() {
    libraries().push_back(std::make_unique<Workloads<Adapter>>());
    return true;
}

}  // namespace InkoraKit
