#include "app/InfoWindows.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "platform/Platform.h"
#include "ui/Text.h"

namespace tessaspaces {

AboutWindow::AboutWindow() : Panel("about.title", 400) {}

void AboutWindow::populate(QVBoxLayout& layout) {
  layout.setSpacing(10);
  layout.addWidget(new Picture(Picture::Kind::icon, 96), 0, Qt::AlignHCenter);
  layout.addSpacing(4);
  layout.addWidget(new Picture(Picture::Kind::wordMark, 230), 0, Qt::AlignHCenter);
  auto* version = new QuietLabel(localized("about.version", TESSASPACES_VERSION));
  version->setAlignment(Qt::AlignHCenter);
  version->setTextInteractionFlags(Qt::TextSelectableByMouse);
  layout.addWidget(version);
  layout.addSpacing(6);
  auto* description = new QLabel(localized("about.description"));
  description->setAlignment(Qt::AlignHCenter);
  description->setWordWrap(true);
  layout.addWidget(description);
  layout.addSpacing(10);
  auto* row = new QHBoxLayout;
  row->addStretch();
  setDefaultButton(addButton(*row, localized("about.close"), [this] { close(); }));
  row->addStretch();
  layout.addLayout(row);
}

PermissionsWindow::PermissionsWindow(std::function<void()> request)
    : Panel("permissions.title", 560), request_(std::move(request)) {}

void PermissionsWindow::populate(QVBoxLayout& layout) {
  layout.addWidget(makeHeading(localized("permissions.heading"), 6));
  layout.addWidget(new QuietLabel(localized("permissions.body")));
  auto* card = new Card;
  auto* column = new QVBoxLayout(card);
  column->setContentsMargins(18, 16, 18, 16);
  column->setSpacing(12);
  auto& permissions = platform().permissions();
  const auto add = [column](bool granted, std::string_view titleKey, std::string_view detailKey) {
    const auto status = granted ? "permissions.granted" : "permissions.missing";
    column->addLayout(makeRow(granted ? State::ok : State::warning, localized(titleKey),
                              localized(status) + QStringLiteral(" ") + localized(detailKey)));
  };
  add(permissions.hasAccessibility(), "permissions.accessibility.title", "permissions.accessibility.detail");
  add(permissions.hasScreenRecording(), "permissions.recording.title", "permissions.recording.detail");
  layout.addWidget(card);
  layout.addStretch();
  auto* row = new QHBoxLayout;
  row->setSpacing(10);
  addButton(*row, localized("menu.requestPermissionsAgain"), [this] {
    request_();
    rebuild();
  });
  row->addStretch();
  setDefaultButton(addButton(*row, localized("permissions.close"), [this] { close(); }));
  layout.addLayout(row);
}

}  // namespace tessaspaces
