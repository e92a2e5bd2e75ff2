#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "settings/AtomicFile.h"
#include "settings/ConfigValue.h"
#include "settings/Enums.h"

namespace tessaspaces {

/// One configuration file; what ConfigStore does with the user's own. See there for the operations.
///
/// A file that cannot be read or is no JSON object counts as empty (or, once it had been read, as what it
/// held before), and is kept aside under another name before it is first written over. Any thread.
class ConfigFile {
 public:
  static constexpr std::string_view fileName = "config.json";
  static constexpr std::string_view keyPrefix = "tessaspaces.";
  /// What the keys began with under an earlier working name; renamed whenever found.
  static constexpr std::string_view legacyKeyPrefix = "LumoPOC.";
  static constexpr std::string_view unreadableSuffix = ".unreadable";

  /// Takes the lines that the store has to say; never called while the lock is held.
  using LogSink = std::function<void(const std::string& message, LogLevel level)>;
  /// Looks a key up in the preferences that older versions used.
  using LegacyLookup = std::function<std::optional<ConfigValue>(std::string_view key)>;

  /// An empty folder means the default one. `observer` is told of the steps of each write.
  explicit ConfigFile(std::filesystem::path directory, LogSink sink, ReplaceObserver observer = {});
  ~ConfigFile();

  [[nodiscard]] std::optional<long long> integer(std::string_view key);
  [[nodiscard]] std::optional<bool> boolean(std::string_view key);
  [[nodiscard]] std::optional<std::string> string(std::string_view key);
  [[nodiscard]] std::optional<ConfigValue> value(std::string_view key);
  [[nodiscard]] std::vector<std::string> keys();

  bool set(std::string_view key, const ConfigValue& value);
  bool remove(std::string_view key);
  [[nodiscard]] std::string stringOrStore(std::string_view key, std::string candidate);
  void importLegacy(const std::vector<std::string>& keys, const LegacyLookup& lookup);
  [[nodiscard]] std::vector<std::string> reloadIfChanged();
  [[nodiscard]] std::optional<std::string> complaint();

  [[nodiscard]] std::filesystem::path directory();
  [[nodiscard]] std::filesystem::path fileURL();
  void useDirectory(std::filesystem::path directory);

 private:
  struct State;
  struct Edits;

  /// Runs `read` on the loaded state under the lock, then writes out what loading made necessary.
  template <class Read>
  auto withLoaded(const Read& read);
  /// Re-reads the file, applies what `edit` makes of the state, and writes; then logs. False when the file does not
  /// have all of it.
  bool change(const std::function<Edits(const State&)>& edit);
  enum class Turn {
    wait,  // let other processes go first
    take   // go on whatever they do
  };
  /// One attempt of the above, without the logging; nothing when it is another process's turn.
  std::optional<bool> tryChange(const std::function<Edits(const State&)>& edit, Turn turn);
  /// Hands the queued lines to the sink. Without the lock.
  void flushPendingLogs();

  const LogSink sink_;
  const ReplaceObserver observer_;
  std::mutex lock_;  // guards *state_ (values, queued lines) and, within this process, the file
  const std::unique_ptr<State> state_;
};

}  // namespace tessaspaces
