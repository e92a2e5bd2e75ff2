#include "app/Alerts.h"

#include <QMessageBox>

#include "app/Icons.h"

namespace tessaspaces::Alerts {
namespace {

void prepare(QMessageBox& box, const QString& title, const QString& body) {
  box.setWindowTitle(QStringLiteral("tessa⊞spaces"));
  box.setIconPixmap(Icons::application().pixmap(QSize(56, 56), box.devicePixelRatio()));
  box.setTextFormat(Qt::PlainText);
  box.setText(title);
  box.setInformativeText(body);
  box.setStandardButtons(QMessageBox::Ok);
  box.setDefaultButton(QMessageBox::Ok);
}

}  // namespace

void info(const QString& title, const QString& body) {
  auto* box = new QMessageBox;
  box->setAttribute(Qt::WA_DeleteOnClose);
  prepare(*box, title, body);
  box->setModal(false);
  box->show();
  box->raise();
  box->activateWindow();
}

void infoAndWait(const QString& title, const QString& body) {
  QMessageBox box;
  prepare(box, title, body);
  box.exec();
}

}  // namespace tessaspaces::Alerts
