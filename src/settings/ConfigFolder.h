#pragma once

#include <filesystem>

namespace tessaspaces {

/// The user's home folder: HOME, else what the user database says.
[[nodiscard]] std::filesystem::path homeDirectory();

/// Where configuration and log lie: .config/tessaspaces in the home folder.
[[nodiscard]] std::filesystem::path defaultConfigDirectory();

}  // namespace tessaspaces
