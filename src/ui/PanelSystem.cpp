#include "ui/PanelSystem.h"

#include "ui/KeyMapping.h"

namespace tessaspaces {

bool QtPanelSystem::takeInput(QWindow& window) {
  window.requestActivate();
  holder_ = &window;
  return true;
}

void QtPanelSystem::giveInputBack(QWindow& window) {
  if (holder_ == &window) holder_ = nullptr;
}

KeyCombo QtPanelSystem::comboOf(const QKeyEvent& event) {
  return KeyMapping::combo(event);
}

}  // namespace tessaspaces
