#pragma once

#include "Document.h"
#include "Results.h"

#include <string>
#include <string_view>
#include <vector>

namespace InkoraKit {

/// What the table and the bars are about.
struct Report {
    const Results& results;
    std::vector<Document> documents;     ///< In the order of the rows.
    std::vector<std::string> libraries;  ///< In the order of the columns, ours first.
};

/// Prints a table for each workload that was measured: ours, and of each peer the figure and how
/// many times ours it is; and under each table its bars.
void printTables(const Report& report);

}  // namespace InkoraKit
