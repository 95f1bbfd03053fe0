#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

inline std::string fileBytes(const std::filesystem::path& path)
{
    return (std::ostringstream() << std::ifstream(path, std::ios::binary).rdbuf()).str();
}

// writeFile makes the folder too, when it is missing.
inline void writeFile(const std::filesystem::path& path, std::string_view content)
{
    std::filesystem::create_directories(std::filesystem::absolute(path).parent_path());
    std::ofstream(path, std::ios::binary) << content;
}
