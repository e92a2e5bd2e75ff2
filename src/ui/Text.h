#pragma once

#include <QString>
#include <string_view>

#include "settings/L10n.h"

namespace tessaspaces {

/// UTF-8 as Qt wants it.
[[nodiscard]] inline QString text(std::string_view utf8) {
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

/// The text for a key, in the user's language; see L10n::t.
template <class... Arguments>
[[nodiscard]] QString localized(std::string_view key, const Arguments&... arguments) {
  return text(L10n::t(key, arguments...));
}

}  // namespace tessaspaces
