#include "ui/AlertCard.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include "ui/OverlayStyle.h"
#include "ui/Text.h"

namespace tessaspaces {
namespace {

constexpr auto shownFor = std::chrono::seconds(6);
constexpr int widest = 440;

QLabel* label(const std::string& content, const QFont& font) {
  auto* made = new QLabel(text(content));
  made->setTextFormat(Qt::PlainText);
  made->setWordWrap(true);
  made->setFont(font);
  made->setAlignment(Qt::AlignHCenter);
  return made;
}

}  // namespace

AlertCard::AlertCard(QWidget& panel, const Theme& theme, const std::string& title, const std::string& body,
                     std::function<void()> done)
    : QFrame(&panel), done_(std::move(done)) {
  setStyleSheet(OverlayStyle::card(theme));
  setAccessibleName(text(title));
  setAccessibleDescription(text(body));
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(26, 20, 26, 20);
  column->setSpacing(6);
  column->addWidget(label(title, Theme::font(16, QFont::DemiBold)));
  if (!body.empty()) {
    QLabel* below = label(body, Theme::font(13));
    below->setObjectName("body");
    column->addWidget(below);
  }
  const int width = std::min(widest, panel.width() - 32);
  setFixedSize(width, column->hasHeightForWidth() ? column->totalHeightForWidth(width) : sizeHint().height());
  move((panel.width() - width) / 2, (panel.height() - height()) / 2);
  OverlayStyle::addShadow(*this);

  timer_.setSingleShot(true);
  timer_.callOnTimeout(this, [this] { done_(); });
  timer_.start(shownFor);
  show();
  raise();
  QAccessibleEvent told(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&told);
}

bool AlertCard::pressedBeside() {
  done_();
  return true;
}

bool AlertCard::keyBeside(const QKeyEvent& event) {
  // Half a combination of keys is no answer yet.
  constexpr std::array modifiers{Qt::Key_Shift,    Qt::Key_Control, Qt::Key_Alt,     Qt::Key_Meta,   Qt::Key_AltGr,
                                 Qt::Key_CapsLock, Qt::Key_NumLock, Qt::Key_Super_L, Qt::Key_Super_R};
  if (std::find(modifiers.begin(), modifiers.end(), event.key()) == modifiers.end() && !event.isAutoRepeat()) done_();
  return true;
}

void AlertCard::mousePressEvent(QMouseEvent*) {
  done_();
}

}  // namespace tessaspaces
