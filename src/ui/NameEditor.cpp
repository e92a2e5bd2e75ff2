#include "ui/NameEditor.h"

#include <QKeyEvent>
#include <utility>

#include "ui/OverlayStyle.h"
#include "ui/Text.h"

namespace tessaspaces {
namespace {

/// More than fits under any tile.
constexpr int longestName = 200;

}  // namespace

NameEditor::NameEditor(QWidget& panel, const Theme& theme, const std::string& name,
                       std::function<void(std::optional<std::string>)> done)
    : QLineEdit(tessaspaces::text(name), &panel), done_(std::move(done)) {
  setAccessibleName(localized("grid.spoken.rename"));
  setMaxLength(longestName);
  setAlignment(Qt::AlignCenter);
  // Its menu would be a window of its own, which takes the input for itself.
  setContextMenuPolicy(Qt::NoContextMenu);
  setFont(Theme::font(14, QFont::DemiBold));
  setStyleSheet(OverlayStyle::field(theme));
  selectAll();
}

void NameEditor::finish(bool take) {
  if (auto done = std::exchange(done_, {})) {
    std::optional<std::string> answer;
    if (take) answer = text().toStdString();
    done(std::move(answer));
  }
}

bool NameEditor::pressedBeside() {
  finish(true);
  return true;
}

void NameEditor::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Escape: finish(false); return;
    case Qt::Key_Return:
    case Qt::Key_Enter: finish(true); return;
    default: QLineEdit::keyPressEvent(event);
  }
  event->accept();  // what it has no use for is nothing for the panel either
}

}  // namespace tessaspaces
