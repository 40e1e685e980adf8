#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/// The small text files in which a system states facts about itself.
namespace ZLVSystemFile {

/// The file's text up to its first line break or NUL, without white space around it; nothing when
/// that is empty or the file cannot be read.
std::optional<std::string> firstLine(const std::filesystem::path& file);

/// The value of `key` in a file of shell assignments, such as os-release(5); nothing when it is
/// missing or empty.
std::optional<std::string> setting(const std::filesystem::path& file, std::string_view key);

}  // namespace ZLVSystemFile
