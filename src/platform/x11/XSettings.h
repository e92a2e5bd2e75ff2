#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/x11/Connection.h"

namespace tessaspaces {

/// What the session's settings program tells all programs (the XSETTINGS protocol): the numbers among its settings.
class XSettings {
 public:
  /// The settings as their property has them. Of data that ends too early, or makes no sense from some point on, what
  /// stands before that.
  static XSettings parse(std::span<const std::uint8_t> data);
  /// Asks for those in force, in two round trips; none where no settings program runs. Any thread.
  static XSettings read(Connection& connection);

  /// Absent where there is no such setting, or it is no number.
  [[nodiscard]] std::optional<std::int32_t> number(std::string_view name) const;

 private:
  std::map<std::string, std::int32_t, std::less<>> numbers_;
};

}  // namespace tessaspaces
