#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace InkoraKit {

// Texts in the shape of the documents that parsers are commonly measured with, and of what a pen's
// host handles. They hold the places that `loadDocuments` and the lookups name. Each call gives the
// same text.

std::string generateTweets();       ///< Pretty: 100 wide dictionaries, Japanese text.
std::string generateCoordinates();  ///< 110,000 numbers of up to 17 digits in pairs.
std::string generateCatalog();      ///< Pretty: many small dictionaries, integers, blanks.
std::string generatePenEvent();     ///< A pen's event, 320 bytes.
std::string generateNested();       ///< Arrays and dictionaries in turn, 481 levels deep.
std::string generateIntegers();     ///< 100,000 integers of 1 to 64 bits.
std::string generateStrings();      ///< 6,000 texts with escapes and beyond ASCII.
std::string generateSettings();     ///< Three levels of dictionaries with 12 members each.
std::string generateGrid();         ///< Three levels of arrays with 20 elements each.

/// How many dictionaries with an array in each stand in one another in the nested document, and
/// their keys in turn.
inline constexpr std::size_t nestedPairs = 240;
inline constexpr std::string_view nestedKeys[] = {"k0", "k1", "k2", "k3", "k4",
                                                  "k5", "k6", "k7", "k8", "k9"};

}  // namespace InkoraKit
