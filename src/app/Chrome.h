#pragma once

#include <QDialog>
#include <QFrame>
#include <QLabel>
#include <QString>
#include <functional>
#include <string>

#include "app/State.h"
#include "base/Signal.h"

class QHBoxLayout;
class QPushButton;
class QScrollArea;
class QVBoxLayout;

namespace tessaspaces {

// What the program's windows are made of. Everything takes its colours from the palette and follows it.

/// A colour for a state that can be read on the palette's window colour.
[[nodiscard]] QColor stateColor(State state, const QPalette& palette);
/// For the screen reader: "OK", "Warning", ...
[[nodiscard]] QString stateName(State state);

/// The symbol of a state.
class StateMark final : public QWidget {
 public:
  explicit StateMark(State state, QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  State state_;
};

/// A text in a weaker colour, of several lines where needed.
class QuietLabel final : public QLabel {
 public:
  explicit QuietLabel(const QString& text, QWidget* parent = nullptr);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void fade();
};

/// A rounded panel that sets its contents apart from the window.
class Card final : public QFrame {
 public:
  explicit Card(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// The program's icon or the word mark.
class Picture final : public QWidget {
 public:
  enum class Kind { icon, wordMark };
  Picture(Kind kind, int width, QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Kind kind_;
};

/// A heading, `steps` points larger than the text.
[[nodiscard]] QLabel* makeHeading(const QString& text, int steps);

/// A push button with room around its text.
[[nodiscard]] QPushButton* makeButton(const QString& text);

/// A line of state, title and explanation.
[[nodiscard]] QHBoxLayout* makeRow(State state, const QString& title, const QString& detail);

/// A window of the program: Escape closes it, closing destroys it, and a change of the language builds its
/// contents anew.
class Panel : public QDialog {
 public:
  /// Shows it in front of all others and gives it the keyboard.
  void present();

 protected:
  /// `width` in points; the height is what the contents need.
  Panel(std::string titleKey, int width);
  /// Builds the contents into an empty layout.
  virtual void populate(QVBoxLayout& layout) = 0;
  /// Throws the contents away and builds them again.
  void rebuild();
  /// The button that Enter presses wherever the keyboard is; it has the keyboard at first.
  void setDefaultButton(QPushButton* button) { default_ = button; }
  /// A part that scrolls where the screen is too low for the whole window; at most one.
  QVBoxLayout& addScrolled(QVBoxLayout& layout);
  /// A button at the end of the row.
  QPushButton* addButton(QHBoxLayout& row, const QString& text, std::function<void()> clicked);

 private:
  /// Makes the contents as large as they have to be, and no higher than the screen where they can scroll.
  void fit(QVBoxLayout& column);

  std::string titleKey_;
  int width_;
  QWidget* content_ = nullptr;
  QScrollArea* scrolled_ = nullptr;
  QPushButton* default_ = nullptr;
  ScopedConnection language_;
};

}  // namespace tessaspaces
