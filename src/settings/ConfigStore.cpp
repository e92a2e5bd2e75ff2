#include "settings/ConfigStore.h"

#include "platform/Platform.h"
#include "settings/ConfigFile.h"
#include "settings/Log.h"

namespace tessaspaces::ConfigStore {
namespace {

ConfigFile& file() {
  // Never destroyed: a thread that ends after `main` may still read a setting.
  static ConfigFile* const shared =
      std::make_unique<ConfigFile>(std::filesystem::path(), [](const std::string& message, LogLevel level) {
        Log::log([&]() -> const std::string& { return message; }, level);
      }).release();
  return *shared;
}

}  // namespace

std::optional<long long> integer(std::string_view key) {
  return file().integer(key);
}
std::optional<bool> boolean(std::string_view key) {
  return file().boolean(key);
}
std::optional<std::string> string(std::string_view key) {
  return file().string(key);
}
std::optional<ConfigValue> value(std::string_view key) {
  return file().value(key);
}
std::vector<std::string> keys() {
  return file().keys();
}
bool set(std::string_view key, ConfigValue value) {
  return file().set(key, value);
}
bool remove(std::string_view key) {
  return file().remove(key);
}

std::string stringOrStore(std::string_view key, std::string candidate) {
  return file().stringOrStore(key, std::move(candidate));
}

void migrateFromUserDefaults(const std::vector<std::string>& keys) {
  if (!hasPlatform()) return;
  file().importLegacy(keys, [](std::string_view key) { return platform().preferences().legacyValue(key); });
}

std::vector<std::string> reloadIfChanged() {
  return file().reloadIfChanged();
}
std::optional<std::string> complaint() {
  return file().complaint();
}
std::filesystem::path directory() {
  return file().directory();
}
std::filesystem::path fileURL() {
  return file().fileURL();
}
void useDirectory(std::filesystem::path directory) {
  file().useDirectory(std::move(directory));
}

}  // namespace tessaspaces::ConfigStore
