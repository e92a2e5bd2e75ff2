#include "app/Icons.h"

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPalette>
#include <QSvgRenderer>

namespace tessaspaces::Icons {
namespace {

QByteArray read(const QString& path) {
  QFile file(":/tessaspaces/" + path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray readSymbol(const QString& name) {
  return read("icons/" + name + ".svg");
}

/// Paints a picture whose "currentColor" becomes `color`, as large as fits into the middle of `rect`.
void drawSvg(QPainter& painter, QByteArray svg, const QRectF& rect, const QColor& color) {
  if (svg.isEmpty()) return;
  QSvgRenderer renderer(svg.replace("currentColor", color.name().toLatin1()));
  renderer.setAspectRatioMode(Qt::KeepAspectRatio);
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setOpacity(painter.opacity() * color.alphaF());
  renderer.render(&painter, rect);
  painter.restore();
}

class Engine : public QIconEngine {
 public:
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    paint(&painter, QRect(QPoint(), size), mode, state);
    painter.end();
    return QPixmap::fromImage(image);
  }
  QSize actualSize(const QSize& size, QIcon::Mode, QIcon::State) override { return size; }
};

class SymbolEngine final : public Engine {
 public:
  explicit SymbolEngine(QByteArray svg) : svg_(std::move(svg)) {}
  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
    const QPalette palette = QGuiApplication::palette();
    QColor color = palette.color(QPalette::Active, QPalette::WindowText);
    if (mode == QIcon::Disabled) color = palette.color(QPalette::Disabled, QPalette::WindowText);
    // Styles ask for these on the highlighted entry of a menu.
    if (mode == QIcon::Active || mode == QIcon::Selected) color = palette.color(QPalette::HighlightedText);
    drawSvg(*painter, svg_, rect, color);
  }
  QIconEngine* clone() const override { return new SymbolEngine(*this); }

 private:
  QByteArray svg_;
};

class PictureEngine final : public Engine {
 public:
  explicit PictureEngine(QByteArray svg) : svg_(std::move(svg)) {}
  void paint(QPainter* painter, const QRect& rect, QIcon::Mode, QIcon::State) override {
    drawSvg(*painter, svg_, rect, Qt::black);
  }
  QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
    return {{16, 16}, {24, 24}, {32, 32}, {48, 48}, {64, 64}, {128, 128}};
  }
  QIconEngine* clone() const override { return new PictureEngine(*this); }

 private:
  QByteArray svg_;
};

QPixmap trayPixmap(const QByteArray& svg, int side, const QColor& color) {
  QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  drawSvg(painter, svg, QRectF(0, 0, side, side), color);
  painter.end();
  return QPixmap::fromImage(image);
}

}  // namespace

QIcon symbol(const QString& name) {
  auto svg = readSymbol(name);
  return svg.isEmpty() ? QIcon() : QIcon(new SymbolEngine(std::move(svg)));
}

void paintSymbol(QPainter& painter, const QString& name, const QRectF& rect, const QColor& color) {
  drawSvg(painter, readSymbol(name), rect, color);
}

QIcon menuBar(const QColor& color) {
  const auto svg = read("images/MenuBarIcon.svg");
  QIcon icon;
  if (svg.isEmpty()) return icon;
  // Ready-made sizes, for a tray on the bus gets pixels and not a way to paint.
  for (const int side : {16, 18, 22, 24, 32, 36, 44, 48, 64}) icon.addPixmap(trayPixmap(svg, side, color));
  return icon;
}

QIcon application() {
  auto svg = read("images/AppIcon.svg");
  return svg.isEmpty() ? QIcon() : QIcon(new PictureEngine(std::move(svg)));
}

QSizeF logoSize(double width) {
  const auto svg = read("images/LogoWide.svg");
  if (svg.isEmpty()) return {};
  const QSizeF size = QSvgRenderer(svg).viewBoxF().size();
  return size.isEmpty() ? QSizeF() : QSizeF(width, width * size.height() / size.width());
}

void paintLogo(QPainter& painter, const QRectF& rect, const QColor& text) {
  drawSvg(painter, read("images/LogoWide.svg"), rect, text);
}

}  // namespace tessaspaces::Icons
