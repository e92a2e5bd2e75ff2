#include "ui/PanelMenu.h"

#include <QWheelEvent>
#include <algorithm>
#include <utility>

#include "ui/OverlayStyle.h"
#include "ui/Text.h"

namespace tessaspaces {
namespace {

constexpr int margin = 8;  // to the edges of the panel

/// Titles are shown as they are: names of desktops may contain what would mark a shortcut.
QString plain(const std::string& title) {
  return text(title).replace(QLatin1Char('&'), QStringLiteral("&&"));
}

}  // namespace

PanelMenu::PanelMenu(QWidget& panel, const Theme& theme, QPoint at, std::vector<GridMenuItem> items,
                     std::function<void()> done)
    : QMenu(&panel), done_(std::move(done)) {
  setWindowFlags(Qt::Widget);
  setAttribute(Qt::WA_NoMousePropagation);
  setFocusPolicy(Qt::StrongFocus);
  setAccessibleName(localized("grid.spoken.menu"));
  setFont(Theme::font(13));
  setStyleSheet(OverlayStyle::menu(theme));
  for (GridMenuItem& item : items) {
    if (item.title.empty()) {
      addSeparator();
      continue;
    }
    QAction* action = addAction(plain(item.title));
    action->setEnabled(item.enabled);
    action->setCheckable(item.checked);
    action->setChecked(item.checked);
    connect(action, &QAction::triggered, this, [this, chosen = std::move(item.action)] {
      finish();
      if (chosen) chosen();
    });
  }
  connect(this, &QMenu::aboutToHide, this, [this] { finish(); });
  connect(this, &QMenu::hovered, this, [this](QAction* action) {
    const QRect place = actionGeometry(action);
    reveal(place.top(), place.bottom());
  });

  resize(sizeHint());
  const auto fit = [](int wanted, int extent, int available) {
    return std::max(margin, std::min(wanted, available - extent - margin));
  };
  move(fit(at.x(), width(), panel.width()), fit(at.y(), height(), panel.height()));
  OverlayStyle::addShadow(*this);
  show();
  raise();
  setFocus();
}

bool PanelMenu::pressedBeside() {
  finish();
  return true;
}

void PanelMenu::finish() {
  if (auto done = std::exchange(done_, {})) done();
}

void PanelMenu::reveal(int top, int bottom) {
  const int available = parentWidget()->height();
  if (height() + 2 * margin <= available) return;
  int y = this->y();
  if (y + bottom > available - 2 * margin) y = available - 2 * margin - bottom;
  if (y + top < 2 * margin) y = 2 * margin - top;
  move(x(), y);
}

void PanelMenu::wheelEvent(QWheelEvent* event) {
  const int strip = event->angleDelta().y() > 0 ? -y() - 60 : parentWidget()->height() - y() + 60;
  const int at = std::clamp(strip, 0, height());
  reveal(at, at);
}

}  // namespace tessaspaces
