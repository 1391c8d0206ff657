#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace InkoraKit {

/// One step of the way to a value: the key of a member, or the position of an element.
struct Step {
    Step(std::string_view memberKey) : isKey(true), key(memberKey) {}
    Step(const char* memberKey) : Step(std::string_view(memberKey)) {}
    Step(int position) : isKey(false), index(static_cast<std::size_t>(position)) {}

    bool isKey;
    std::string_view key;
    std::size_t index = 0;
};

/// A text that all libraries are measured with.
struct Document {
    std::string name;
    std::string text;
    std::vector<Step> place;   ///< Where one value deep inside is changed.
    std::vector<Step> bottom;  ///< The same as far down as it goes, where that is very far.
    std::string patch;         ///< What is merged into it: dictionaries and scalars. May be empty.
    bool isGenerated = false;
};

/// The documents of every workload, in the table's order. Those that the folder does not hold as
/// `name.json` are generated, always the same ones. A file has to hold the places that are looked
/// up and changed, as the well-known document of its name does.
/// @throws std::runtime_error when a file is there and cannot be read
std::vector<Document> loadDocuments(const std::filesystem::path& folder);

/// Two generated ones, made for looking up by keys only (`settings`) and by positions only
/// (`grid`).
std::vector<Document> lookupDocuments();

}  // namespace InkoraKit
