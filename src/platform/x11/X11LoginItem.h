#pragma once

#include <filesystem>

#include "platform/Session.h"

namespace tessaspaces {

/// A desktop file in the XDG autostart folder. What the user wrote into it stays: switching off only hides
/// it, and switching on only takes that back, unless it starts a program that is gone.
class X11LoginItem : public LoginItem {
 public:
  /// `file` is the autostart file, `executable` the program that it shall start.
  X11LoginItem(std::filesystem::path file, std::filesystem::path executable)
      : file_(std::move(file)), executable_(std::move(executable)) {}
  /// In XDG_CONFIG_HOME, else ~/.config.
  static std::filesystem::path standardFile();
  /// The program that is running.
  static std::filesystem::path ownExecutable();

  bool isRegistered() override;
  std::optional<std::string> setRegistered(bool registered) override;

 private:
  const std::filesystem::path file_;
  const std::filesystem::path executable_;
};

}  // namespace tessaspaces
