#include "Library.h"
#include "Table.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <map>
#include <mutex>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>
#include <vector>

// Compares `JSON` with other libraries' values, all in this process, their repetitions interleaved
// at random; prints the medians of the processor's time, and which bars hold.
//
//     json-benchmark [--quick] [--benchmark_filter=…] [FOLDER]
//
// Figures count from a build with CMAKE_BUILD_TYPE=Release. `--quick` shows only that it works.
// FOLDER holds the documents (twitter.json and so on); the missing ones are generated, and so are
// all where none is named. Ends with 1 when a library cannot read a document or finds something
// else in it than InkoraKit.
namespace {

using namespace InkoraKit;

/// Gathers the times of all repetitions.
class Collector : public benchmark::BenchmarkReporter {
public:
    explicit Collector(Results& results) : results_(results) {}
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            const std::string& name = run.run_name.function_name;
            const std::size_t first = name.find('/');
            const std::size_t second = name.find('/', first + 1);
            results_.add(name.substr(0, first), name.substr(first + 1, second - first - 1),
                         name.substr(second + 1), run.GetAdjustedCPUTime());
        }
    }

private:
    Results& results_;
};

/// What the command line asks for beyond the benchmark library's own options.
struct Options {
    bool isQuick = false;
    std::string folder;  // empty for none
};

/// Takes our own options from the arguments, and hands the others to the benchmark library behind
/// the defaults, so that they count more.
Options readOptions(int argumentCount, char** arguments) {
    Options options;
    std::vector<char*> others;
    for (int i = 1; i < argumentCount; ++i) {
        if (std::strcmp(arguments[i], "--quick") == 0) {
            options.isQuick = true;
        } else if (arguments[i][0] == '-') {
            others.push_back(arguments[i]);
        } else {
            options.folder = arguments[i];
        }
    }
    std::vector<std::string> defaults = {
        arguments[0], "--benchmark_enable_random_interleaving=true",
        options.isQuick ? "--benchmark_repetitions=1" : "--benchmark_repetitions=9",
        options.isQuick ? "--benchmark_min_time=0.001" : "--benchmark_min_time=0.03"};
    std::vector<char*> all;
    for (std::string& argument : defaults) all.push_back(argument.data());
    all.insert(all.end(), others.begin(), others.end());
    all.push_back(nullptr);
    int count = static_cast<int>(all.size()) - 1;
    benchmark::Initialize(&count, all.data());
    if (benchmark::ReportUnrecognizedArguments(count, all.data())) std::exit(1);
    return options;
}

/// InkoraKit first, then by name.
std::vector<std::string> sortLibraries() {
    std::sort(libraries().begin(), libraries().end(), [](const auto& left, const auto& right) {
        const auto rank = [](const Library& library) {
            return std::pair(library.name() != "InkoraKit", library.name());
        };
        return rank(*left) < rank(*right);
    });
    std::vector<std::string> names;
    for (const auto& library : libraries()) names.emplace_back(library->name());
    return names;
}

std::string shown(const Contents& contents) {
    return std::to_string(contents.nodes) + " nodes, " + std::to_string(contents.lengths) +
           " bytes of text, numbers with the mantissas' sum " + std::to_string(contents.mantissas) +
           " and the exponents' " + std::to_string(contents.exponents);
}

/// @throws std::runtime_error that names the document when the library cannot read it
std::map<std::string, Contents> examine(const Library& library, const Document& document) {
    try {
        return library.examine(document);
    } catch (const std::exception& error) {
        throw std::runtime_error(document.name + ", " + std::string(library.name()) + ": " +
                                 error.what());
    }
}

/// Whether every library finds in the document, in each state, what the first one does.
bool agreeOn(const Document& document) {
    bool agree = true;
    std::map<std::string, Contents> expected;
    for (const auto& library : libraries()) {
        for (const auto& [state, contents] : examine(*library, document)) {
            const Contents& first = expected.try_emplace(state, contents).first->second;
            if (contents.isSameAs(first)) continue;
            agree = false;
            std::fprintf(stderr, "%s, %s: %s finds %s instead of %s\n", document.name.c_str(),
                         state.c_str(), std::string(library->name()).c_str(),
                         shown(contents).c_str(), shown(first).c_str());
        }
    }
    return agree;
}

/// A thread that does nothing while it lives: the process has more than one.
class IdleThread {
public:
    ~IdleThread() { thread_.request_stop(); }

private:
    std::mutex mutex_;
    std::condition_variable_any woken_;
    std::jthread thread_{[this](const std::stop_token& stop) {
        std::unique_lock lock(mutex_);
        woken_.wait(lock, stop, [] { return false; });
    }};
};

void measure(const Report& report, Results& results) {
    std::vector<Document> documents;
    for (const Document& document : report.documents)
        if (!document.place.empty()) documents.push_back(document);

    for (const auto& library : libraries()) {
        for (const Document& document : documents) {
            results.add("memory", document.name, std::string(library->name()),
                        library->liveMemory(document));
        }
    }

    Collector collector(results);
    for (const auto& library : libraries()) {
        library->addBenchmarks(documents);
        library->addLookups(report.documents);
    }
    libraries().front()->addPlainCopies(documents, "copy");
    benchmark::RunSpecifiedBenchmarks(&collector);

    // Counting references costs more from the first thread on, so this comes last.
    const IdleThread idle;
    benchmark::ClearRegisteredBenchmarks();
    libraries().front()->addPlainCopies(documents, "copy-threaded");
    benchmark::RunSpecifiedBenchmarks(&collector);
}

int run(int argumentCount, char** arguments) {
    const Options options = readOptions(argumentCount, arguments);
    Results results;
    Report report{results, loadDocuments(options.folder), sortLibraries()};
    const std::vector<Document> more = lookupDocuments();
    report.documents.insert(report.documents.end(), more.begin(), more.end());

    bool agree = true;
    for (const Document& document : report.documents) {
        std::printf("%-13s %8zu bytes%s\n", document.name.c_str(), document.text.size(),
                    document.isGenerated ? ", generated" : "");
        agree = agreeOn(document) && agree;
    }
    if (!agree) return 1;

    measure(report, results);
    printTables(report);
    return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    try {
        return run(argumentCount, arguments);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "json-benchmark: %s\n", error.what());
        return 1;
    }
}
