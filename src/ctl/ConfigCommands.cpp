#include "ctl/ConfigCommands.h"

#include <fmt/format.h>

#include <ostream>

#include "settings/ConfigStore.h"
#include "settings/SettingsTable.h"

namespace tessaspaces::ctl {
namespace {

constexpr std::string_view prefix = "tessaspaces.";

std::string fullKey(const std::string& key) {
  return key.starts_with(prefix) ? key : std::string(prefix) + key;
}

/// The setting of a key, or a line on standard error.
const SettingsTable::Entry* findOrComplain(const std::string& key, std::ostream& err) {
  const auto* entry = SettingsTable::find(key);
  if (entry == nullptr) {
    err << "tessactl: there is no setting '" << key << "'; 'tessactl config list' names them all\n";
  }
  return entry;
}

std::string valueText(const SettingsTable::Entry& entry, const std::string& key) {
  const auto stored = ConfigStore::value(key);
  return stored ? SettingsTable::format(entry, *stored) : SettingsTable::formatDefault(entry);
}

/// A change that the file did not take is in this process's memory alone, which is about to end.
ExitCode confirm(bool stored, std::ostream& err) {
  if (stored) return ExitCode::success;
  err << "tessactl: " << ConfigStore::fileURL().string() << " could not be written\n";
  return ExitCode::refused;
}

}  // namespace

ExitCode run(const ConfigList& /*request*/, std::ostream& out, std::ostream& /*err*/) {
  for (const auto& entry : SettingsTable::entries()) {
    if (entry.isPerItem()) continue;
    const std::string key(entry.key);
    out << fmt::format("{} = {}{}\n", key, valueText(entry, key), ConfigStore::value(key) ? "" : "  (default)");
  }
  for (const auto& key : ConfigStore::keys()) {
    const auto* entry = SettingsTable::find(key);
    if (entry != nullptr && entry->isPerItem()) out << fmt::format("{} = {}\n", key, valueText(*entry, key));
  }
  return ExitCode::success;
}

ExitCode run(const ConfigGet& request, std::ostream& out, std::ostream& err) {
  const std::string key = fullKey(request.key);
  const auto* entry = findOrComplain(key, err);
  if (entry == nullptr) return ExitCode::refused;
  out << valueText(*entry, key) << '\n';
  return ExitCode::success;
}

ExitCode run(const ConfigSet& request, std::ostream& /*out*/, std::ostream& err) {
  const std::string key = fullKey(request.key);
  const auto* entry = findOrComplain(key, err);
  if (entry == nullptr) return ExitCode::refused;
  const auto parsed = SettingsTable::parse(*entry, request.value);
  if (!parsed.value) {
    err << "tessactl: " << key << ": " << parsed.error << '\n';
    return ExitCode::refused;
  }
  return confirm(ConfigStore::set(key, *parsed.value), err);
}

ExitCode run(const ConfigUnset& request, std::ostream& /*out*/, std::ostream& err) {
  const std::string key = fullKey(request.key);
  if (findOrComplain(key, err) == nullptr) return ExitCode::refused;
  return confirm(ConfigStore::remove(key), err);
}

}  // namespace tessaspaces::ctl
