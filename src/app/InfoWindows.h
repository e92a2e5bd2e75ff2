#pragma once

#include <functional>

#include "app/Chrome.h"

namespace tessaspaces {

/// What this program is.
class AboutWindow final : public Panel {
 public:
  AboutWindow();

 private:
  void populate(QVBoxLayout& layout) override;
};

/// The libraries that the program is made with, and their licences.
class LicensesWindow final : public Panel {
 public:
  LicensesWindow();

 private:
  void populate(QVBoxLayout& layout) override;
};

/// What the program must be allowed to do, and whether it is.
class PermissionsWindow final : public Panel {
 public:
  /// `request` is what the button does.
  explicit PermissionsWindow(std::function<void()> request);

 private:
  void populate(QVBoxLayout& layout) override;

  std::function<void()> request_;
};

}  // namespace tessaspaces
