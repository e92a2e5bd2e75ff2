#include "app/Alerts.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "app/Chrome.h"
#include "ui/Text.h"

namespace tessaspaces::Alerts {
namespace {

class Alert final : public Panel {
 public:
  Alert(QString title, QString body) : Panel("alert.title", 460), title_(std::move(title)), body_(std::move(body)) {}

 private:
  void populate(QVBoxLayout& layout) override {
    auto* row = new QHBoxLayout;
    row->setSpacing(18);
    row->addWidget(new Picture(Picture::Kind::icon, 56), 0, Qt::AlignTop);
    auto* column = new QVBoxLayout;
    column->setSpacing(8);
    column->addWidget(makeHeading(title_, 2));
    auto* body = new QLabel(body_);
    body->setWordWrap(true);
    body->setTextFormat(Qt::PlainText);
    column->addWidget(body);
    column->addStretch();
    row->addLayout(column, 1);
    layout.addLayout(row);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    setDefaultButton(addButton(*buttons, localized("alert.ok"), [this] { accept(); }));
    layout.addLayout(buttons);
    setAccessibleDescription(title_ + "\n" + body_);
  }

  QString title_;
  QString body_;
};

}  // namespace

void info(const QString& title, const QString& body) {
  (new Alert(title, body))->present();
}

void infoAndWait(const QString& title, const QString& body) {
  auto* alert = new Alert(title, body);
  alert->present();
  alert->exec();
}

}  // namespace tessaspaces::Alerts
