#include "Document.h"
#include "Generators.h"

#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>

namespace InkoraKit {
namespace {

std::optional<std::string> textOfFile(const std::filesystem::path& path) {
    if (!std::filesystem::exists(path)) return std::nullopt;
    std::ifstream file(path, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(file), {});
    if (!file) throw std::runtime_error(path.string() + " cannot be read");
    return text;
}

/// The way to the innermost number of the document of nested arrays and dictionaries.
std::vector<Step> bottomOfNested() {
    std::vector<Step> steps = {30};
    for (std::size_t pair = 0; pair < nestedPairs; ++pair) {
        steps.emplace_back(nestedKeys[pair % std::size(nestedKeys)]);
        steps.emplace_back(0);
    }
    return steps;
}

}  // namespace

std::vector<Document> loadDocuments(const std::filesystem::path& folder) {
    struct Description {
        std::string name;
        std::string (*generate)();
        std::vector<Step> place;
        std::vector<Step> bottom;
        std::string patch;
    };
    const std::vector<Step> bottom = bottomOfNested();
    const Description descriptions[] = {
        {"twitter",
         generateTweets,
         {"statuses", 50, "user", "followers_count"},
         {},
         R"({"search_metadata":{"count":101,"query":"pen","note":"d\u00e9j\u00e0 vu"}})"},
        {"canada",
         generateCoordinates,
         {"features", 0, "geometry", "coordinates", 100, 2, 0},
         {},
         R"({"type":"Outline","properties":{"name":"Canada","scale":0.5}})"},
        {"citm_catalog",
         generateCatalog,
         {"performances", 100, "prices", 0, "amount"},
         {},
         R"({"events":{"138586341":{"logo":"/images/new","id":7}},"venueNames":{"NEW":"Hall"}})"},
        {"small",
         generatePenEvent,
         {"pos", "x"},
         {},
         R"({"pos":{"x":1.5},"colour":{"a":0.5},"pressure":0.25})"},
        {"nested", generateNested, {bottom.begin(), bottom.begin() + 9}, bottom, {}},
        {"ints", generateIntegers, {50'000}, {}, {}},
        {"strings", generateStrings, {3'000}, {}, {}},
    };

    std::vector<Document> documents;
    for (const Description& description : descriptions) {
        std::optional<std::string> text;
        if (!folder.empty()) text = textOfFile(folder / (description.name + ".json"));
        const bool isGenerated = !text.has_value();
        if (isGenerated) text = description.generate();
        documents.push_back({description.name, std::move(*text), description.place,
                             description.bottom, description.patch, isGenerated});
    }
    return documents;
}

std::vector<Document> lookupDocuments() {
    return {{"settings", generateSettings(), {}, {}, {}, true},
            {"grid", generateGrid(), {}, {}, {}, true}};
}

}  // namespace InkoraKit
