#include "gallery/WindowPictures.h"

#include <QColor>
#include <QLinearGradient>
#include <QPainter>
#include <array>
#include <cmath>
#include <random>

#include "gallery/Wallpapers.h"

namespace tessaspaces::gallery {
namespace {

/// The size that windows are drawn for; scaled to what is asked.
constexpr int fullWidth = 1000;
constexpr int barHeight = 34;

struct Application {
  const char* name;
  std::array<const char*, 3> titles;
  QRgb color;
};

constexpr std::array<Application, applications> all = {{
    {"Browser", {"Weather in the mountains", "Release notes", "Train times and tickets"}, 0xFF3B82F6},
    {"Terminal", {"~/src: make", "server: logs", "~: top"}, 0xFF2B303B},
    {"Editor", {"main.cpp - project", "notes.md", "layout.cpp - project"}, 0xFF7C5CE0},
    {"Mail", {"Inbox (12)", "Re: Thursday's meeting", "Drafts"}, 0xFF0EA5A4},
    {"Files", {"Documents", "Pictures", "Downloads"}, 0xFFF59E0B},
    {"Music", {"Evening list", "Library", "Now playing"}, 0xFFEC4899},
    {"Tables", {"Budget.ods", "Measurements.ods", "Invoices.ods"}, 0xFF22A55B},
    {"Photos", {"Holiday - 24 of 113", "Portraits", "Import"}, 0xFFEF5A3C},
}};

const Application& app(int application) {
  return all[static_cast<std::size_t>(application % applications)];
}

class Drawing {
 public:
  Drawing(QPainter& painter, int number, double width, double height)
      : painter_(painter), random_(static_cast<unsigned>(number) + 17), width_(width), height_(height) {
    painter_.setPen(Qt::NoPen);
  }

  void box(double x, double y, double w, double h, const QColor& color, double corner = 0) {
    painter_.setBrush(color);
    painter_.drawRoundedRect(QRectF(x, y, w, h), corner, corner);
  }
  double any(double from, double to) { return std::uniform_real_distribution<double>(from, to)(random_); }
  /// Lines of text seen from afar.
  void lines(double x, double y, double w, int count, const QColor& color, double height = 8, double step = 20) {
    for (int i = 0; i < count && y + i * step < height_ - 10; ++i) {
      double at = x;
      const double end = x + w * (i % 5 == 4 ? any(0.3, 0.6) : any(0.8, 1));
      while (at < end) {
        const double word = std::min(any(20, 70), end - at);
        box(at, y + i * step, word, height, color, height / 2);
        at += word + 9;
      }
    }
  }
  void titleBar(const QString& title, bool dark) {
    box(0, 0, width_, barHeight, dark ? QColor(0x2A2E37) : QColor(0xE7E9EE));
    const std::array<QRgb, 3> buttons = {0xFFEF6A5E, 0xFFF5BF4F, 0xFF62C554};
    for (std::size_t i = 0; i < buttons.size(); ++i) {
      box(14 + 22.0 * static_cast<double>(i), 11, 12, 12, QColor(buttons[i]), 6);
    }
    painter_.setPen(dark ? QColor(0xD7DAE0) : QColor(0x3A3F4A));
    QFont font = painter_.font();
    font.setPixelSize(15);
    painter_.setFont(font);
    painter_.drawText(QRectF(90, 0, width_ - 180, barHeight), Qt::AlignCenter, title);
    painter_.setPen(Qt::NoPen);
  }

  void browser(int number) {
    box(0, barHeight, width_, 44, QColor(0xF7F8FA));
    box(width_ * 0.2, barHeight + 8, width_ * 0.6, 28, QColor(0xE9ECF1), 14);
    box(width_ * 0.2 + 14, barHeight + 19, width_ * 0.22, 7, QColor(0x9AA3B2), 3);
    box(0, barHeight + 44, width_, height_, Qt::white);
    painter_.drawImage(QRectF(60, 108, width_ - 120, height_ * 0.32), wallpaper(number * 7 + 3, 480, 160));
    box(60, height_ * 0.32 + 134, width_ * 0.42, 22, QColor(0x20242C), 6);
    lines(60, height_ * 0.32 + 176, width_ * 0.56, 24, QColor(0xB4BAC6));
    for (int i = 0; i < 3; ++i) {
      const double y = height_ * 0.32 + 134 + i * 118;
      box(width_ * 0.7, y, width_ * 0.24, 100, QColor(0xEEF1F6), 10);
      lines(width_ * 0.7 + 14, y + 22, width_ * 0.19, 3, QColor(0xC3C9D4));
    }
  }
  void terminal() {
    box(0, barHeight, width_, height_, QColor(0x171A21));
    const std::array<QRgb, 5> inks = {0xFF8BC98F, 0xFFC8CCD4, 0xFF7FB2F0, 0xFFE3B96B, 0xFF9AA2B1};
    for (double y = barHeight + 16; y < height_ - 20; y += 21) {
      double x = 18;
      const int words = static_cast<int>(any(1, 9));
      for (int i = 0; i < words && x < width_ - 120; ++i) {
        const double word = any(18, 90);
        box(x, y, word, 9, QColor(inks[static_cast<std::size_t>(any(0, 4.99))]), 2);
        x += word + 11;
      }
    }
  }
  void editor() {
    box(0, barHeight, width_, height_, QColor(0x1F2229));
    box(0, barHeight, width_ * 0.2, height_, QColor(0x191B21));
    lines(20, barHeight + 24, width_ * 0.12, 22, QColor(0x5B6373), 8, 24);
    const std::array<QRgb, 5> inks = {0xFFC792EA, 0xFF82AAFF, 0xFFC3E88D, 0xFFD6DAE3, 0xFFFFCB6B};
    int depth = 0;
    for (double y = barHeight + 22; y < height_ - 12; y += 21) {
      depth = std::clamp(depth + static_cast<int>(any(-1.6, 1.9)), 0, 4);
      double x = width_ * 0.24 + depth * 28;
      box(width_ * 0.21, y, 14, 8, QColor(0x444B58), 2);
      const int words = any(0, 1) < 0.12 ? 0 : static_cast<int>(any(1, 7));
      for (int i = 0; i < words; ++i) {
        const double word = any(18, 80);
        box(x, y, word, 8, QColor(inks[static_cast<std::size_t>(any(0, 4.99))]), 3);
        x += word + 10;
      }
    }
  }
  void mail() {
    box(0, barHeight, width_, height_, Qt::white);
    box(0, barHeight, width_ * 0.17, height_, QColor(0xEEF3F4));
    lines(20, barHeight + 30, width_ * 0.1, 7, QColor(0xA9B8BB), 9, 32);
    for (int i = 0; barHeight + i * 78 < height_; ++i) {
      const double y = barHeight + i * 78;
      if (i == 1) box(width_ * 0.17, y, width_ * 0.28, 78, QColor(0xD8EFEE));
      box(width_ * 0.19, y + 18, 38, 38, QColor::fromHsv(static_cast<int>(any(0, 359)), 90, 220), 19);
      box(width_ * 0.19 + 52, y + 18, width_ * any(0.08, 0.15), 9, QColor(0x3A4250), 4);
      box(width_ * 0.19 + 52, y + 38, width_ * 0.18, 7, QColor(0xC3C9D4), 3);
    }
    box(width_ * 0.45, barHeight, 1, height_, QColor(0xE2E5EA));
    box(width_ * 0.49, barHeight + 36, width_ * 0.3, 18, QColor(0x20242C), 6);
    lines(width_ * 0.49, barHeight + 96, width_ * 0.44, 30, QColor(0xB4BAC6));
  }
  void files() {
    box(0, barHeight, width_, height_, QColor(0xFBFBFC));
    box(0, barHeight, width_ * 0.18, height_, QColor(0xF0F1F4));
    lines(24, barHeight + 28, width_ * 0.1, 8, QColor(0xB1B6C0), 9, 30);
    for (double y = barHeight + 34; y < height_ - 90; y += 128) {
      for (double x = width_ * 0.23; x < width_ - 100; x += 128) {
        const bool folder = any(0, 1) < 0.55;
        if (folder) {
          box(x, y + 6, 34, 14, QColor(0xE09B25), 4);
          box(x, y + 12, 78, 54, QColor(0xF5B84B), 7);
        } else {
          painter_.drawImage(QRectF(x, y + 4, 78, 62), wallpaper(static_cast<int>(any(0, 40)), 80, 60));
        }
        box(x + 8, y + 78, any(36, 62), 8, QColor(0x8B92A0), 4);
      }
    }
  }
  void music(int number) {
    QLinearGradient ground(0, 0, width_, height_);
    ground.setColorAt(0, QColor(0x2A1733));
    ground.setColorAt(1, QColor(0x120D1B));
    painter_.fillRect(QRectF(0, barHeight, width_, height_), ground);
    const double side = std::min(width_, height_) * 0.42;
    painter_.drawImage(QRectF(50, barHeight + 50, side, side), wallpaper(number * 5 + 1, 200, 200));
    box(90 + side, barHeight + 66, width_ * 0.3, 24, QColor(0xF7E9F1), 8);
    lines(90 + side, barHeight + 120, width_ * 0.4, 9, QColor(0x7A5F86), 9, 34);
    box(50, height_ - 70, width_ - 100, 6, QColor(0x4A3656), 3);
    box(50, height_ - 70, (width_ - 100) * 0.37, 6, QColor(0xEC4899), 3);
    box(44 + (width_ - 100) * 0.37, height_ - 76, 18, 18, Qt::white, 9);
  }
  void tables() {
    box(0, barHeight, width_, height_, Qt::white);
    box(0, barHeight, width_, 34, QColor(0xE8F3EC));
    for (double y = barHeight + 34; y < height_; y += 30) {
      box(0, y, width_, 1, QColor(0xE2E5EA));
      for (double x = 60; x < width_; x += 116) {
        box(x, barHeight + 34, 1, height_, QColor(0xE9EBEF));
        if (any(0, 1) < 0.7) box(x + 100 - any(26, 80), y + 11, 26, 8, QColor(0x9AA3B2), 3);
      }
    }
    for (int i = 0; i < 9; ++i) {
      const double high = any(40, height_ * 0.3);
      box(width_ * 0.55 + i * 42, height_ - 40 - high, 28, high, QColor::fromHsv(140, 110, 150 + i * 9), 4);
    }
  }
  void photos(int number) {
    box(0, barHeight, width_, height_, QColor(0x1A1A1D));
    painter_.drawImage(QRectF(0, barHeight, width_, height_ - barHeight - 90), wallpaper(number * 3, 640, 400));
    for (int i = 0; i * 118 < width_; ++i) {
      painter_.drawImage(QRectF(14 + i * 118, height_ - 78, 104, 66), wallpaper(number * 3 + i, 104, 66));
    }
  }

 private:
  QPainter& painter_;
  std::mt19937 random_;
  double width_;
  double height_;
};

}  // namespace

QString applicationName(int application) {
  return QString::fromLatin1(app(application).name);
}

QString windowTitle(int application, int number) {
  return QString::fromLatin1(app(application).titles[static_cast<std::size_t>(number % 3)]);
}

QImage windowPicture(int application, int number, int width, int height) {
  QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  const double part = static_cast<double>(width) / fullWidth;
  painter.scale(part, part);
  Drawing drawing(painter, number * applications + application, fullWidth, height / part);
  switch (application % applications) {
    case 0: drawing.browser(number); break;
    case 1: drawing.terminal(); break;
    case 2: drawing.editor(); break;
    case 3: drawing.mail(); break;
    case 4: drawing.files(); break;
    case 5: drawing.music(number); break;
    case 6: drawing.tables(); break;
    default: drawing.photos(number); break;
  }
  const bool dark = application % applications == 1 || application % applications == 2 || application % applications == 5;
  drawing.titleBar(windowTitle(application, number), dark);
  return image;
}

QImage applicationIcon(int application, int side) {
  QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  const QColor color(app(application).color);
  QLinearGradient ground(0, 0, 0, side);
  ground.setColorAt(0, color.lighter(120));
  ground.setColorAt(1, color.darker(115));
  painter.setPen(Qt::NoPen);
  painter.setBrush(ground);
  painter.drawRoundedRect(QRectF(0, 0, side, side), side * 0.22, side * 0.22);
  painter.setPen(Qt::white);
  QFont font = painter.font();
  font.setPixelSize(side / 2);
  font.setBold(true);
  painter.setFont(font);
  painter.drawText(QRectF(0, 0, side, side), Qt::AlignCenter, applicationName(application).left(1));
  return image;
}

}  // namespace tessaspaces::gallery
