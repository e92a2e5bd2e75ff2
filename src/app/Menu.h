#pragma once

#include <QMenu>
#include <functional>
#include <span>
#include <string_view>

namespace tessaspaces {

/// What the entries of the menu ask for.
enum class MenuCommand {
  separator,
  showGrid,
  openSettings,
  checkForUpdates,
  showAbout,
  showLicenses,
  showPermissions,
  requestPermissions,
  quit,
};

struct MenuEntry {
  MenuCommand command = MenuCommand::separator;
  std::string_view titleKey;
  /// Of Icons::symbol.
  std::string_view symbol;
};

namespace Menu {

/// The entries in their order.
[[nodiscard]] std::span<const MenuEntry> entries();

/// Fills the menu anew, in the language of the moment: the word mark, then every entry whose command has a
/// target. A separator stands only between two entries.
void fill(QMenu& menu, const std::function<std::function<void()>(MenuCommand)>& target);

}  // namespace Menu
}  // namespace tessaspaces
