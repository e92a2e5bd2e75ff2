#pragma once

#include <QIcon>
#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>
#include <memory>

#include "app/TrayHosts.h"

namespace tessaspaces {

/// The program's icon in the system tray with its menu. It waits for a tray to exist, for as long as it
/// takes; until then it has its menu all the same. Main thread.
class StatusItem final : public QObject {
 public:
  StatusItem();
  ~StatusItem() override;

  /// Looks for a tray from now on.
  void start();

  /// One menu for the item's whole life; whoever changes the language fills it anew.
  [[nodiscard]] QMenu& menu() { return *menu_; }
  void setToolTip(const QString& text);
  void setVisible(bool visible);
  [[nodiscard]] bool isVisible() const { return visible_; }
  /// Stands in a tray now.
  [[nodiscard]] bool isShown() const { return tray_ && tray_->isVisible(); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void update();
  [[nodiscard]] QIcon icon() const;

  std::unique_ptr<QMenu> menu_;
  TrayHosts hosts_;
  QString toolTip_;
  bool visible_ = false;
  bool missingLogged_ = false;
  std::unique_ptr<QSystemTrayIcon> tray_;
};

}  // namespace tessaspaces
