#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <optional>
#include <string>

#include "fuzz/Fuzz.h"
#include "settings/ConfigFile.h"
#include "settings/ConfigJson.h"
#include "settings/ConfigStore.h"
#include "settings/Settings.h"
#include "settings/SettingsTable.h"
#include "support/TemporaryFolder.h"

// The configuration file, which people edit: whatever it holds, nothing crashes, what this program does not know
// outlives a change, and a text that cannot be read is never lost.

namespace tessaspaces {
namespace {

namespace fs = std::filesystem;
using fuzz::require;

constexpr std::string_view probeKey = "tessaspaces.fuzz";

std::string readAll(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

const fs::path& emptyFolder() {
  static const testing::TemporaryFolder folder;
  for (const auto& name : folder.names()) fs::remove(folder / name);
  return folder.path();
}

/// What is shown of a value must be taken back as the same value.
void typeAndShow(const SettingsTable::Entry& entry, std::string_view typed) {
  const auto parsed = SettingsTable::parse(entry, typed);
  require(parsed.value.has_value() == parsed.error.empty(), "neither a value nor an error, or both");
  if (!parsed.value) return;
  const auto again = SettingsTable::parse(entry, SettingsTable::format(entry, *parsed.value));
  require(again.value == parsed.value, "what is shown of a setting is taken for something else");
}

void readValues(const JsonObject& object) {
  for (const auto& [key, json] : object) {
    const auto value = asValue(&json);
    if (value && !json.is_number_float()) require(fromValue(*value) == json || json.is_number_unsigned(), "changed");
    require(value.has_value() || (!asInteger(&json) && !asBoolean(&json) && !asString(&json)), "a value of no kind");
    const auto* entry = SettingsTable::find(key);
    if (entry == nullptr) continue;
    if (value) (void)SettingsTable::format(*entry, *value);
    if (const auto text = asString(&json)) typeAndShow(*entry, *text);
  }
}

/// The typed readers; not of the masks, which end the program by design when one is out of range.
void readSettings(const JsonObject& object) {
  require(Settings::gridRows() >= 1 && Settings::gridRows() <= Settings::maxGridSide, "rows out of bounds");
  require(Settings::gridColumns("B") >= 1 && Settings::gridColumns("B") <= Settings::maxGridSide, "columns too");
  for (const auto group : allCases<HotkeyGroup>()) {
    const auto stored = ConfigStore::integer(fmt::format("tessaspaces.hotkey.{}", static_cast<int>(group)));
    const bool isMask = !stored || (*stored >= 0 && *stored <= std::numeric_limits<std::uint32_t>::max());
    if (isMask) (void)Settings::modifiers(group);
  }
  for (const auto corner : allCases<HotCorner>()) (void)Settings::hotCornerAction(corner);
  (void)Settings::circulationEnabled();
  (void)Settings::circulationJoin();
  (void)Settings::transitionStyle();
  (void)Settings::transitionSpeed();
  (void)Settings::overviewGridCombo();
  (void)Settings::gridViewToggleCombo();
  (void)Settings::logLevel();
  (void)Settings::language();
  (void)Settings::quality();
  (void)Settings::nextDiagnosticsSendDate();
  (void)Settings::diagnosticsSentOffset();
  (void)Settings::acceptedClashes();
  for (const auto& entry : object) {
    (void)Settings::desktopNickname(entry.first);
    (void)Settings::appAssignment(entry.first);
  }
}

/// One process reads the file, another changes a key.
void liveWithFile(const fs::path& folder, std::string_view text, const std::optional<JsonObject>& object) {
  std::string errors;
  const ConfigFile::LogSink sink = [&](const std::string& line, LogLevel level) {
    if (level == LogLevel::error) errors += line + "\n";
  };
  const auto file = folder / ConfigFile::fileName;
  std::ofstream(file, std::ios::binary) << text;

  ConfigFile reader(folder, sink);
  require(reader.complaint().has_value() != object.has_value(), "the complaint does not fit the text");
  for (const auto& key : reader.keys()) {
    (void)reader.integer(key);
    (void)reader.boolean(key);
    (void)reader.string(key);
  }
  if (!object) require(readAll(file) == text, "an unreadable file was changed by reading it");

  require(ConfigFile(folder, sink).set(probeKey, ConfigValue(std::string(text))), "a change was not written");
  require(errors.empty(), errors);
  const auto stored = parseObject(readAll(file)).object;
  require(stored.has_value(), "the written file cannot be read");

  auto expected = object.value_or(JsonObject());
  renameKeys(expected, ConfigFile::legacyKeyPrefix, ConfigFile::keyPrefix);
  expected.insert_or_assign(std::string(probeKey), Json(validUtf8(text)));
  require(*stored == expected, "a change lost or altered another key");
  if (!object) {
    const auto copy = file.string() + std::string(ConfigFile::unreadableSuffix);
    require(readAll(copy) == text, "an unreadable text was written over");
  }

  // The reader kept what it had read, unless its file was unreadable, and now sees the change.
  (void)reader.reloadIfChanged();
  require(reader.string(probeKey) == validUtf8(text), "a change was not noticed");
}

}  // namespace
}  // namespace tessaspaces

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tessaspaces;
  const auto text = fuzz::asText(data, size);
  const auto parsed = parseObject(text);
  fuzz::require(parsed.object.has_value() == parsed.error.empty(), "neither an object nor an error, or both");
  if (parsed.object) readValues(*parsed.object);
  for (const auto& entry : SettingsTable::entries()) typeAndShow(entry, text);

  const auto& folder = emptyFolder();
  liveWithFile(folder, text, parsed.object);
  if (parsed.object) {
    std::ofstream(folder / ConfigFile::fileName, std::ios::binary) << text;
    ConfigStore::useDirectory(folder);
    readSettings(*parsed.object);
  }
  return 0;
}
