#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>

namespace InkoraKit {

/// The seeds of a fuzzer by name.
inline std::map<std::string, std::string> seedsOf(const std::string& fuzzer) {
    std::map<std::string, std::string> seeds;
    for (const auto& entry :
         std::filesystem::directory_iterator(std::filesystem::path(INKORA_SEEDS) / fuzzer)) {
        std::ifstream file(entry.path(), std::ios::binary);
        seeds[entry.path().filename().string()] = {std::istreambuf_iterator<char>(file), {}};
    }
    return seeds;
}

}  // namespace InkoraKit
