#include "app/Menu.h"

#include <QIcon>
#include <QPainter>
#include <QWidget>
#include <QWidgetAction>
#include <array>
#include <utility>

#include "app/Icons.h"
#include "ui/Text.h"

namespace tessaspaces::Menu {
namespace {

constexpr std::array table{
    MenuEntry{MenuCommand::showGrid, "menu.showGrid", "square.grid.3x3"},
    MenuEntry{MenuCommand::openSettings, "menu.settings", "gearshape"},
    MenuEntry{MenuCommand::checkForUpdates, "menu.checkForUpdates", "arrow.down.circle"},
    MenuEntry{},
    MenuEntry{MenuCommand::showAbout, "menu.about", "info.circle"},
    MenuEntry{MenuCommand::showLicenses, "menu.licenses", "doc.text"},
    MenuEntry{},
    MenuEntry{MenuCommand::showPermissions, "menu.aboutPermissions", "checkmark.shield"},
    MenuEntry{MenuCommand::requestPermissions, "menu.requestPermissionsAgain", "hand.raised"},
    MenuEntry{},
    MenuEntry{MenuCommand::quit, "menu.quit", "power"},
};

/// The word mark on a dark ground, above the entries.
class Header final : public QWidget {
 public:
  static constexpr int minimumWidth = 164;
  static constexpr int logoWidth = 140;
  static constexpr QPoint logoOrigin{12, 3};

  explicit Header(QSizeF logo) : logo_(logo) {
    setMinimumWidth(minimumWidth);
    setFixedHeight(qRound(logo.height()) + 2 * logoOrigin.y());
    setAccessibleName(QStringLiteral("tessa⊞spaces"));
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.fillRect(rect(), QColor::fromRgbF(0.08F, 0.08F, 0.08F));
    Icons::paintLogo(painter, QRectF(logoOrigin, logo_), Qt::white);
  }

 private:
  QSizeF logo_;
};

void addHeader(QMenu& menu) {
  const QSizeF logo = Icons::logoSize(Header::logoWidth);
  if (logo.isEmpty()) return;
  auto* action = new QWidgetAction(&menu);
  action->setDefaultWidget(new Header(logo));
  // What a tray on the bus shows, which gets the text alone.
  action->setText(QStringLiteral("tessa⊞spaces"));
  action->setEnabled(false);
  menu.addAction(action);
  menu.addSeparator();
}

}  // namespace

std::span<const MenuEntry> entries() {
  return table;
}

void fill(QMenu& menu, const std::function<std::function<void()>(MenuCommand)>& target) {
  menu.clear();
  addHeader(menu);
  bool anything = false;
  bool separate = false;
  for (const MenuEntry& entry : table) {
    if (entry.command == MenuCommand::separator) {
      separate = anything;
      continue;
    }
    const auto run = target(entry.command);
    if (!run) continue;
    if (std::exchange(separate, false)) menu.addSeparator();
    QAction* action = menu.addAction(Icons::symbol(text(entry.symbol)), localized(entry.titleKey));
    action->setData(static_cast<int>(entry.command));
    QObject::connect(action, &QAction::triggered, &menu, run);
    anything = true;
  }
}

}  // namespace tessaspaces::Menu
