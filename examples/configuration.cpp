// A host that keeps its settings as JSON: it reads them from a file, changes two, merges what a
// second file holds, and prints the result.
//     configuration SETTINGS [PATCH]
#include <InkoraKit/JSON.h>

#include <cerrno>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <system_error>

using namespace InkoraKit;

// Throws why the text cannot be had.
std::string textOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::system_error(errno, std::generic_category());
    return {std::istreambuf_iterator<char>(file), {}};
}

// JSON::parse would give null for what is no JSON. This throws what is wrong with it, and where.
JSON settingsIn(const std::string& path) {
    JSON settings = JSONSerialization::jsonObject(textOf(path));
    if (settings.type() != Type::dictionary)
        throw std::runtime_error("The outermost value is not a dictionary.");
    return settings;
}

// Of a fault in a text the line and column.
std::string reasonOf(const std::exception& error) {
    const auto* const kitError = dynamic_cast<const NSError*>(&error);
    if (!kitError) return error.what();
    const JSON details = kitError->userInfo();
    return details[NSDebugDescriptionErrorKey].string().value_or(error.what());
}

int main(int count, char** arguments) {
    if (count < 2 || count > 3) {
        std::fputs("usage: configuration SETTINGS [PATCH]\n", stderr);
        return 2;
    }
    const char* path = arguments[1];
    try {
        JSON settings = settingsIn(path);
        settings["starts"] = settings["starts"].intValue() + 1;
        if (!settings["window"].dictionaryObject()) settings["window"] = Dictionary();
        settings["window"]["title"] = "Palette";
        if (count == 3) {
            path = arguments[2];
            settings.merge(settingsIn(path));
        }
        const auto layout = JSONSerialization::WritingOptions::prettyPrinted;
        std::puts(JSONSerialization::text(settings.object(), layout).c_str());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", path, reasonOf(error).c_str());
        return 1;
    }
}
