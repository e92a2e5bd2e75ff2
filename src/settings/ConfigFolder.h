#pragma once

#include <filesystem>
#include <string>

namespace tessaspaces {

/// The user's home folder: HOME, else what the user database says.
[[nodiscard]] std::filesystem::path homeDirectory();

/// A path for people: the home folder is written as "~".
[[nodiscard]] std::string displayPath(const std::filesystem::path& path);

/// Where configuration and log lie: .config/tessaspaces in the home folder.
[[nodiscard]] std::filesystem::path defaultConfigDirectory();

}  // namespace tessaspaces
