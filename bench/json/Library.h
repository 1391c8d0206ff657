#pragma once

#include "Contents.h"
#include "Document.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace InkoraKit {

/// A library under measurement. Each has a source file of its own, which enters it into the list;
/// what is not linked in is not measured.
class Library {
public:
    virtual ~Library() = default;
    virtual std::string_view name() const = 0;

    /// What it finds in the document as read, written and read again, changed, and merged with the
    /// patch; by the name of that state. What it has no function for is left out.
    /// @throws std::exception when the text is not read
    virtual std::map<std::string, Contents> examine(const Document& document) const = 0;

    /// Bytes of heap that a value holds for each byte of its text.
    virtual double liveMemory(const Document& document) const = 0;

    /// Registers a benchmark, named workload/document/library, for every workload that it has a
    /// function for. The documents have to outlive the benchmarks.
    virtual void addBenchmarks(const std::vector<Document>& documents) = 0;
    virtual void addLookups(const std::vector<Document>& documents) = 0;
    /// A copy made and dropped, nothing else.
    virtual void addPlainCopies(const std::vector<Document>& documents,
                                std::string_view workload) = 0;
};

/// Those that are linked in; InkoraKit among them.
inline std::vector<std::unique_ptr<Library>>& libraries() {
    static std::vector<std::unique_ptr<Library>> all;
    return all;
}

}  // namespace InkoraKit
