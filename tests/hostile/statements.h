#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "model/vocabulary.h"

/// Texts from the files beside the tests.
namespace QB::Test {

struct Text {
    DatabaseType family;
    std::string text;
};

inline std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("cannot read " + path.string());
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline std::vector<std::filesystem::path> filesIn(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    return paths;
}

inline DatabaseType familyNamed(const std::string& name) {
    static const std::vector<std::pair<std::string, DatabaseType>> names = {
        {"mysql", DatabaseTypeMySQL},           {"mariadb", DatabaseTypeMariaDB},
        {"postgresql", DatabaseTypePostgreSQL}, {"oracle", DatabaseTypeOracle},
        {"sqlite", DatabaseTypeSQLite},         {"sqlserver", DatabaseTypeSQLServer}};
    for (const auto& [known, family] : names)
        if (known == name) return family;
    throw std::runtime_error("no family is called " + name);
}

/// The statements of the files FAMILY.sql in @p folder, with blank lines between them.
inline std::vector<Text> statementsIn(const std::filesystem::path& folder) {
    std::vector<Text> all;
    for (const auto& path : filesIn(folder)) {
        const std::string content = contentOf(path);
        const DatabaseType family = familyNamed(path.stem().string());
        for (std::size_t begin = 0; begin < content.size();) {
            std::size_t end = content.find("\n\n", begin);
            if (end == std::string::npos) end = content.size();
            all.push_back({family, content.substr(begin, end - begin)});
            begin = end + 2;
        }
    }
    return all;
}

}  // namespace QB::Test
