#pragma once

#include <QLineEdit>
#include <functional>
#include <optional>
#include <string>

#include "ui/PanelSystem.h"
#include "ui/Theme.h"

namespace tessaspaces {

/// A field over a panel in which a name is edited: Enter and a click beside it take the text, Escape does not.
class NameEditor final : public QLineEdit, public PanelOverlay {
  Q_OBJECT

 public:
  /// `done` is called once; what is told to be nothing is a change of mind.
  NameEditor(QWidget& panel, const Theme& theme, const std::string& name,
             std::function<void(std::optional<std::string>)> done);

  void finish(bool take);

  bool pressedBeside() override;
  bool keyBeside(const QKeyEvent&) override { return true; }

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  std::function<void(std::optional<std::string>)> done_;
};

}  // namespace tessaspaces
