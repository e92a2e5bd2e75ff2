#include "settings/L10n.h"

#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>

#include "platform/Platform.h"
#include "settings/Enums.h"
#include "settings/Notifications.h"
#include "settings/Settings.h"

namespace tessaspaces::L10n {
namespace {

namespace fs = std::filesystem;
using Table = std::map<std::string, std::string, std::less<>>;

struct State {
  std::mutex lock;  // guards everything below
  std::shared_ptr<const Table> table;
  fs::path folder;
};

State& state() {
  static State shared;
  return shared;
}

std::optional<Table> decode(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) return std::nullopt;
  const auto json = nlohmann::json::parse(stream, nullptr, false);
  if (!json.is_object()) return std::nullopt;
  Table table;
  for (const auto& [key, value] : json.items()) {
    if (!value.is_string()) return std::nullopt;
    table.emplace(key, value.get_ref<const std::string&>());
  }
  return table;
}

/// The preferred language over English, so that a text that a translation still lacks is there all the same.
std::shared_ptr<const Table> load() {
  const auto folder = resourceFolder() / "Localization";
  Table table;
  if (auto preferred = decode(folder / (preferredLanguageCode() + ".json"))) table = std::move(*preferred);
  if (auto english = decode(folder / "en.json")) table.merge(*english);
  return std::make_shared<const Table>(std::move(table));
}

std::shared_ptr<const Table> currentTable() {
  auto& shared = state();
  {
    const std::lock_guard guard(shared.lock);
    if (shared.table) return shared.table;
  }
  // Loaded without the lock, because it reads the settings.
  auto table = load();
  const std::lock_guard guard(shared.lock);
  if (!shared.table) shared.table = std::move(table);
  return shared.table;
}

fs::path findResources() {
  if (const char* set = std::getenv("TESSASPACES_RESOURCES"); set != nullptr && *set != '\0') return set;
  std::error_code error;
  if (const auto executable = fs::read_symlink("/proc/self/exe", error); !error) {
    auto installed = executable.parent_path().parent_path() / "share" / "tessaspaces";
    if (fs::is_directory(installed / "Localization", error)) return installed;
  }
  return TESSASPACES_SOURCE_RESOURCES;
}

/// "de" of "de-AT", "cs" of "cs_CZ.UTF-8", in lower case.
std::string primarySubtag(std::string_view tag) {
  std::string language;
  for (const char c : tag.substr(0, tag.find_first_of("-_.@"))) {
    language += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return language;
}

}  // namespace

std::string t(std::string_view key) {
  const auto table = currentTable();
  const auto found = table->find(key);
  return found != table->end() ? found->second : std::string(key);
}

void reload() {
  auto table = load();
  {
    const std::lock_guard guard(state().lock);
    state().table = std::move(table);
  }
  Notifications::post(Notifications::languageChanged);
}

std::string preferredLanguageCode() {
  if (const auto chosen = code(Settings::language())) return std::string(*chosen);
  std::vector<std::string> offered;
  for (const auto language : allCases<AppLanguage>()) {
    if (const auto offer = code(language)) offered.emplace_back(*offer);
  }
  const auto preferred = hasPlatform() ? platform().preferences().preferredLanguages() : std::vector<std::string>();
  const auto match = bestMatch(preferred, offered);
  return match.empty() ? "en" : match;
}

std::string bestMatch(const std::vector<std::string>& preferred, const std::vector<std::string>& offered) {
  for (const auto& tag : preferred) {
    const auto wanted = primarySubtag(tag);
    for (const auto& offer : offered) {
      if (primarySubtag(offer) == wanted) return offer;
    }
  }
  return {};
}

fs::path resourceFolder() {
  {
    const std::lock_guard guard(state().lock);
    if (!state().folder.empty()) return state().folder;
  }
  return findResources();
}

void setResourceFolder(fs::path folder) {
  const std::lock_guard guard(state().lock);
  state().folder = std::move(folder);
  state().table = nullptr;
}

}  // namespace tessaspaces::L10n
