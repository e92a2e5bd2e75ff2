#include <QFile>
#include <QHBoxLayout>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <array>

#include "app/InfoWindows.h"
#include "ui/Text.h"

namespace tessaspaces {
namespace {

constexpr const char* mitText =
    "Permission is hereby granted, free of charge, to any person obtaining a copy of this software and associated "
    "documentation files (the \"Software\"), to deal in the Software without restriction, including without "
    "limitation the rights to use, copy, modify, merge, publish, distribute, sublicense, and/or sell copies of the "
    "Software, and to permit persons to whom the Software is furnished to do so, subject to the following "
    "conditions:\n\n"
    "The above copyright notice and this permission notice shall be included in all copies or substantial portions "
    "of the Software.\n\n"
    "THE SOFTWARE IS PROVIDED \"AS IS\", WITHOUT WARRANTY OF ANY KIND, EXPRESS OR IMPLIED, INCLUDING BUT NOT LIMITED "
    "TO THE WARRANTIES OF MERCHANTABILITY, FITNESS FOR A PARTICULAR PURPOSE AND NONINFRINGEMENT. IN NO EVENT SHALL "
    "THE AUTHORS OR COPYRIGHT HOLDERS BE LIABLE FOR ANY CLAIM, DAMAGES OR OTHER LIABILITY, WHETHER IN AN ACTION OF "
    "CONTRACT, TORT OR OTHERWISE, ARISING FROM, OUT OF OR IN CONNECTION WITH THE SOFTWARE OR THE USE OR OTHER "
    "DEALINGS IN THE SOFTWARE.\n";

struct Library {
  const char* name;
  const char* license;
  const char* notice;
  const char* text;      // in full
  const char* resource;  // where it is too long for that
};

constexpr std::array libraries{
    Library{"Qt 6", "LGPL-3.0",
            "Copyright (C) The Qt Company Ltd. and other contributors.\n\nThe windows, the menu and the tray icon are "
            "made with Qt (Core, Gui, Widgets, DBus, Svg), which is linked dynamically: it can be replaced by a "
            "modified version. Used under the terms of the GNU Lesser General Public License, version 3.",
            nullptr, ":/tessaspaces/licenses/LGPL-3.0.txt"},
    Library{"{fmt}", "MIT", "Copyright (c) 2012 - present, Victor Zverovich and {fmt} contributors", mitText, nullptr},
    Library{"JSON for Modern C++", "MIT", "Copyright (c) 2013-2022 Niels Lohmann", mitText, nullptr},
    Library{"libxcb", "MIT / X11",
            "Copyright (C) 2001-2006 Bart Massey, Jamey Sharp, and Josh Triplett. All Rights Reserved.", mitText,
            nullptr},
    Library{"GNU GPL", "GPL-3.0",
            "The GNU Lesser General Public License adds permissions to this licence; no part of this program is under "
            "it.",
            nullptr, ":/tessaspaces/licenses/GPL-3.0.txt"},
};

QString noticeOf(const Library& library) {
  QString all = QString::fromUtf8(library.notice) + "\n\n";
  if (library.text != nullptr) return all + QString::fromUtf8(library.text);
  QFile file(library.resource);
  if (file.open(QIODevice::ReadOnly)) all += QString::fromUtf8(file.readAll());
  return all;
}

}  // namespace

LicensesWindow::LicensesWindow() : Panel("licenses.title", 780) {}

void LicensesWindow::populate(QVBoxLayout& layout) {
  layout.addWidget(makeHeading(localized("licenses.heading"), 6));
  layout.addWidget(new QuietLabel(localized("licenses.body")));
  auto* columns = new QHBoxLayout;
  columns->setSpacing(12);
  auto* list = new QListWidget;
  list->setObjectName("libraries");
  list->setAccessibleName(localized("licenses.list"));
  list->setFixedWidth(210);
  list->setSpacing(2);
  for (const Library& library : libraries) {
    list->addItem(QString::fromUtf8(library.name) + "\n" + QString::fromUtf8(library.license));
  }
  auto* notice = new QPlainTextEdit;
  notice->setReadOnly(true);
  notice->setMinimumHeight(340);
  notice->setTabChangesFocus(true);
  notice->setAccessibleName(localized("licenses.notice"));
  connect(list, &QListWidget::currentRowChanged, notice, [notice](int row) {
    notice->setPlainText(row < 0 ? QString() : noticeOf(libraries.at(static_cast<std::size_t>(row))));
  });
  list->setCurrentRow(0);
  columns->addWidget(list);
  columns->addWidget(notice, 1);
  layout.addLayout(columns, 1);
  auto* row = new QHBoxLayout;
  row->addStretch();
  setDefaultButton(addButton(*row, localized("licenses.close"), [this] { close(); }));
  layout.addLayout(row);
}

}  // namespace tessaspaces
