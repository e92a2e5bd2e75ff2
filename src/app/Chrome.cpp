#include "app/Chrome.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QVBoxLayout>
#include <utility>

#include "app/Icons.h"
#include "settings/Notifications.h"
#include "ui/Text.h"

namespace tessaspaces {
namespace {

constexpr int markSide = 20;
constexpr int sideMargin = 28;
/// What window managers put around a window, generously.
constexpr int frameHeight = 48;
/// So much of what scrolls is seen, however large the texts are.
constexpr int leastScrolled = 120;

bool isDark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightnessF() < 0.5F;
}

QColor mix(const QColor& from, const QColor& to, float share) {
  const auto part = [share](float a, float b) { return a + (b - a) * share; };
  return QColor::fromRgbF(part(from.redF(), to.redF()), part(from.greenF(), to.greenF()),
                          part(from.blueF(), to.blueF()));
}

QString symbolOf(State state) {
  switch (state) {
    case State::ok: return QStringLiteral("checkmark.circle");
    case State::off: return QStringLiteral("minus.circle");
    case State::waiting: return QStringLiteral("clock");
    case State::warning: return QStringLiteral("exclamationmark.triangle");
    case State::failed: return QStringLiteral("xmark.circle");
  }
  return {};
}

}  // namespace

QColor stateColor(State state, const QPalette& palette) {
  const bool dark = isDark(palette);
  switch (state) {
    case State::ok: return dark ? QColor(0x5d, 0xd3, 0x95) : QColor(0x1d, 0x7f, 0x4a);
    case State::warning: return dark ? QColor(0xf5, 0xb9, 0x4a) : QColor(0xa8, 0x5f, 0x00);
    case State::failed: return dark ? QColor(0xff, 0x7b, 0x7b) : QColor(0xc2, 0x2f, 0x2f);
    case State::off:
    case State::waiting: break;
  }
  return mix(palette.color(QPalette::WindowText), palette.color(QPalette::Window), 0.35F);
}

QString stateName(State state) {
  switch (state) {
    case State::ok: return localized("launch.state.ok");
    case State::off: return localized("launch.state.off");
    case State::waiting: return localized("launch.state.waiting");
    case State::warning: return localized("launch.state.warning");
    case State::failed: return localized("launch.state.failed");
  }
  return {};
}

StateMark::StateMark(State state, QWidget* parent) : QWidget(parent), state_(state) {
  setFixedSize(markSide, markSide);
  setAccessibleName(stateName(state));
}

void StateMark::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  Icons::paintSymbol(painter, symbolOf(state_), rect(), stateColor(state_, palette()));
}

QuietLabel::QuietLabel(const QString& text, QWidget* parent) : QLabel(text, parent) {
  setWordWrap(true);
  setTextFormat(Qt::PlainText);
  fade();
}

void QuietLabel::changeEvent(QEvent* event) {
  QLabel::changeEvent(event);
  if (event->type() == QEvent::ParentChange || event->type() == QEvent::ApplicationPaletteChange) fade();
}

void QuietLabel::fade() {
  QPalette faded;
  faded.setColor(QPalette::WindowText,
                 mix(faded.color(QPalette::WindowText), faded.color(QPalette::Window), isDark(faded) ? 0.3F : 0.36F));
  setPalette(faded);
}

Card::Card(QWidget* parent) : QFrame(parent) {
  setFrameShape(QFrame::NoFrame);
}

void Card::paintEvent(QPaintEvent*) {
  const QColor window = palette().color(QPalette::Window);
  const QColor ground = isDark(palette()) ? mix(window, Qt::white, 0.055F) : mix(window, Qt::white, 0.75F);
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(mix(window, palette().color(QPalette::WindowText), 0.13F), 1));
  painter.setBrush(ground);
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 9, 9);
}

Picture::Picture(Kind kind, int width, QWidget* parent) : QWidget(parent), kind_(kind) {
  setFixedSize(width, kind == Kind::icon ? width : qRound(Icons::logoSize(width).height()));
  if (kind == Kind::wordMark) setAccessibleName(QStringLiteral("tessa⊞spaces"));
}

void Picture::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  if (kind_ == Kind::icon) {
    Icons::application().paint(&painter, rect());
  } else {
    Icons::paintLogo(painter, rect(), palette().color(QPalette::WindowText));
  }
}

QLabel* makeHeading(const QString& text, int steps) {
  auto* label = new QLabel(text);
  QFont font = label->font();
  font.setPointSizeF(font.pointSizeF() + steps);
  font.setWeight(QFont::DemiBold);
  label->setFont(font);
  label->setWordWrap(true);
  label->setTextFormat(Qt::PlainText);
  return label;
}

QPushButton* makeButton(const QString& text) {
  auto* button = new QPushButton(text);
  const QSize hint = button->sizeHint();
  button->setMinimumSize(qMax(104, hint.width() + 20), qMax(30, hint.height() + 4));
  return button;
}

QHBoxLayout* makeRow(State state, const QString& title, const QString& detail) {
  auto* row = new QHBoxLayout;
  row->setSpacing(12);
  auto* mark = new StateMark(state);
  row->addWidget(mark, 0, Qt::AlignTop);
  auto* column = new QVBoxLayout;
  column->setSpacing(2);
  column->addWidget(makeHeading(title, 0));
  if (!detail.isEmpty()) {
    auto* explanation = new QuietLabel(detail);
    mark->setAccessibleDescription(title + ": " + detail);
    column->addWidget(explanation);
  }
  row->addLayout(column, 1);
  return row;
}

Panel::Panel(std::string titleKey, int width) : titleKey_(std::move(titleKey)), width_(width) {
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowFlag(Qt::WindowContextHelpButtonHint, false);
  auto* outer = new QVBoxLayout(this);
  outer->setContentsMargins(0, 0, 0, 0);
  outer->setSizeConstraint(QLayout::SetMinimumSize);
  language_ = Notifications::observe(Notifications::languageChanged, [this] { rebuild(); });
}

void Panel::rebuild() {
  setWindowTitle(localized(titleKey_));
  // A button of the old contents may be what asked for this, so they go once it has returned.
  QString focused;
  if (content_ != nullptr) {
    if (const QWidget* widget = focusWidget()) focused = widget->objectName();
    content_->hide();
    layout()->removeWidget(content_);
    content_->deleteLater();
  }
  content_ = new QWidget;
  auto* column = new QVBoxLayout(content_);
  column->setContentsMargins(sideMargin, 26, sideMargin, 22);
  column->setSpacing(16);
  default_ = nullptr;
  scrolled_ = nullptr;
  populate(*column);
  fit(*column);
  layout()->addWidget(content_);
  adjustSize();
  // Only now is it the dialog's.
  if (default_ != nullptr) default_->setDefault(true);
  QWidget* again = focused.isEmpty() ? nullptr : content_->findChild<QWidget*>(focused);
  if (again == nullptr || !again->isEnabled()) again = default_;
  if (again != nullptr) again->setFocus();
}

void Panel::fit(QVBoxLayout& column) {
  const QLayout* inner = scrolled_ != nullptr ? scrolled_->widget()->layout() : nullptr;
  if (inner != nullptr) scrolled_->setMinimumWidth(inner->totalMinimumSize().width());
  // Texts of several lines do not tell a layout how high they get.
  const int width = qMax(width_, column.totalMinimumSize().width());
  if (inner != nullptr) {
    const int whole = inner->totalHeightForWidth(width - 2 * sideMargin);
    // Not its own wish, which supposes a narrower window.
    scrolled_->setFixedHeight(whole);
    const int excess = column.totalHeightForWidth(width) - (screen()->availableGeometry().height() - frameHeight);
    if (excess > 0) scrolled_->setFixedHeight(qMax(leastScrolled, whole - excess));
  }
  content_->setMinimumSize(width, column.totalHeightForWidth(width));
}

QVBoxLayout& Panel::addScrolled(QVBoxLayout& layout) {
  scrolled_ = new QScrollArea;
  scrolled_->setFrameShape(QFrame::NoFrame);
  scrolled_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scrolled_->setWidgetResizable(true);
  auto* inner = new QWidget;
  auto* column = new QVBoxLayout(inner);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(layout.spacing());
  scrolled_->setWidget(inner);
  layout.addWidget(scrolled_);
  return *column;
}

void Panel::present() {
  if (content_ == nullptr) rebuild();
  show();
  raise();
  activateWindow();
}

QPushButton* Panel::addButton(QHBoxLayout& row, const QString& text, std::function<void()> clicked) {
  auto* button = makeButton(text);
  connect(button, &QPushButton::clicked, this, std::move(clicked));
  row.addWidget(button);
  return button;
}

}  // namespace tessaspaces
