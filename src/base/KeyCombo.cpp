#include "base/KeyCombo.h"

#include <algorithm>

namespace tessaspaces {

std::string KeyCombo::modifierSymbols(std::uint32_t mask) {
  // Option stands before shift on purpose, unlike in the platform's menus: combos are read here as
  // "base modifiers plus shift", and the documentation writes them that way.
  std::string symbols;
  if (mask & control) symbols += "⌃";
  if (mask & option) symbols += "⌥";
  if (mask & shift) symbols += "⇧";
  if (mask & command) symbols += "⌘";
  return symbols;
}

std::string KeyCombo::keyName(std::uint32_t keyCode) {
  switch (keyCode) {
    case 49: return "Space";
    case 123: return "←";
    case 124: return "→";
    case 126: return "↑";
    case 125: return "↓";
    case 5: return "G";
    default: break;
  }
  const auto* digit = std::find(digitKeyCodes.begin(), digitKeyCodes.end(), keyCode);
  if (digit == digitKeyCodes.end()) return "?";
  return std::to_string((digit - digitKeyCodes.begin() + 1) % 10);
}

std::string KeyCombo::display() const {
  return isEmpty() ? "—" : modifierSymbols(modifiers) + keyName(keyCode);
}

}  // namespace tessaspaces
