#pragma once

#include <string>
#include <variant>

namespace tessaspaces {

/// A value as the configuration file stores it. The file may hold other kinds of JSON values too; those are
/// kept when the file is rewritten, but are no settings.
using ConfigValue = std::variant<bool, long long, double, std::string>;

}  // namespace tessaspaces
