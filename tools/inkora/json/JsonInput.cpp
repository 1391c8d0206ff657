#include "json/JsonInput.h"

#include "Utf8.h"
#include "json/JsonFailure.h"
#include "json/JsonTextFault.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

std::string shownName(const std::string& file) {
    return file == standardInput ? "standard input" : printableText(file);
}

std::string restOf(std::FILE* stream, std::size_t expectedSize) {
    std::string text;
    text.reserve(expectedSize);
    std::array<char, 65536> part;
    while (const std::size_t size = std::fread(part.data(), 1, part.size(), stream))
        text.append(part.data(), size);
    if (std::ferror(stream) != 0) throw std::system_error(errno, std::generic_category());
    return text;
}

std::string contentsOf(const std::string& file) {
    if (file == standardInput) return restOf(stdin, 0);
    const std::unique_ptr<std::FILE, CloseFile> stream(std::fopen(file.c_str(), "rb"));
    if (!stream) throw std::system_error(errno, std::generic_category());
    std::error_code unknown;
    const std::uintmax_t size = std::filesystem::file_size(file, unknown);
    return restOf(stream.get(), unknown ? 0 : static_cast<std::size_t>(size));
}

}  // namespace

JSON readJson(const std::string& file) {
    std::string text;
    try {
        text = contentsOf(file);
    } catch (const std::system_error& error) {
        throw JsonFailure(ExitStatus::unreadable, shownName(file) + ": " + error.code().message());
    }
    try {
        return JSONSerialization::jsonObject(text,
                                             JSONSerialization::ReadingOptions::allowFragments);
    } catch (const NSError& error) {
        throw JsonFailure(ExitStatus::noJson, jsonTextFault(shownName(file), text, error));
    }
}

}  // namespace InkoraTool
