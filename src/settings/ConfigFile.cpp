#include "settings/ConfigFile.h"

#include <fmt/format.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <set>
#include <thread>
#include <utility>

#include "settings/ConfigFolder.h"
#include "settings/ConfigJson.h"

namespace tessaspaces {
namespace {

namespace fs = std::filesystem;

// How long a change waits for other processes to finish their own: far longer than a write takes on a busy
// disk, and short enough to bear if one of them hangs. Then the change goes on without the lock.
constexpr int lockAttempts = 500;
constexpr auto lockPause = std::chrono::milliseconds(2);
// A process that makes change after change leaves this between two of them, longer than the others pause
// between two attempts, so that they have their turn.
constexpr auto breath = std::chrono::milliseconds(3);

// A file changed twice within one tick of the file system's clock may look unchanged.
constexpr std::int64_t clockDoubt = 100'000'000;

std::int64_t nowNanoseconds() {
  return std::chrono::nanoseconds(std::chrono::system_clock::now().time_since_epoch()).count();
}

}  // namespace

/// Values to store, and keys to remove where there is no value.
struct ConfigFile::Edits {
  std::map<std::string, std::optional<Json>> values;
  /// A line to log at INFO once the values have been written.
  std::string note;
};

struct ConfigFile::State {
  enum class OnDisk { missing, parsed, unparsable };

  fs::path directory;
  bool directoryMade = false;

  bool loaded = false;
  JsonObject values;
  /// Changes that could not be written yet; they hold over whatever the file says.
  std::map<std::string, std::optional<Json>> unwritten;
  bool renamed = false;  // values hold renamed keys that the file does not have yet
  /// Keys that others changed since the last reloadIfChanged.
  std::set<std::string> changedByOthers;

  OnDisk onDisk = OnDisk::missing;
  std::string bytes;      // what the file held when it was last read or written
  std::string complaint;  // why it is unparsable
  std::optional<FileStamp> stamp;
  std::int64_t stampTaken = 0;
  std::optional<FileStamp> keptAside;  // the file that already has a copy
  std::optional<std::chrono::steady_clock::time_point> lastWrite;

  std::vector<std::pair<std::string, LogLevel>> pendingLogs;

  bool createDirectory() const {
    std::error_code error;  // a later write reports what is wrong
    fs::create_directories(directory, error);
    return !error;
  }

  void makeDirectory() {
    if (directory.empty()) directory = defaultConfigDirectory();
    // Once there, it is not made again by a mere look: when it goes (a home that is not there just now), the
    // values in memory go on.
    if (!directoryMade) directoryMade = createDirectory();
  }

  [[nodiscard]] fs::path file() {
    makeDirectory();
    return directory / fileName;
  }

  [[nodiscard]] bool mayHaveChanged() {
    const bool doubtful = stamp && stampTaken - stamp->modified < clockDoubt;
    return doubtful || stampOf(file()) != stamp;
  }

  [[nodiscard]] bool justWrote() const { return lastWrite && std::chrono::steady_clock::now() - *lastWrite < breath; }

  void noteStamp(const std::optional<FileStamp>& newStamp) {
    stamp = newStamp;
    stampTaken = nowNanoseconds();
  }

  void refresh();
  void take(JsonObject parsed);
  void write(const fs::path& target, DirectoryLock::State lock, const ReplaceObserver& observer);
  [[nodiscard]] std::optional<std::string> keepUnparsable(const fs::path& target);
};

/// Brings `values` up to what the file holds now.
void ConfigFile::State::refresh() {
  const auto path = file();
  auto contents = readFile(path);
  noteStamp(contents.state == FileContents::State::read ? contents.stamp : stampOf(path));

  if (contents.state == FileContents::State::missing) {
    // With the whole folder gone (a home that is not there just now) the values in memory go on; a file
    // that somebody deleted takes its values along.
    std::error_code error;
    const bool deleted = onDisk != OnDisk::missing && fs::is_directory(followLinks(path).parent_path(), error);
    if (deleted || !loaded) {
      onDisk = OnDisk::missing;
      bytes.clear();
      take({});
    }
    return;
  }
  const bool unreadable = contents.state == FileContents::State::unreadable;
  if (loaded && onDisk != OnDisk::missing && !unreadable && contents.bytes == bytes) return;
  bytes = std::move(contents.bytes);
  auto parsed = unreadable ? ParsedObject{std::nullopt, contents.reason} : parseObject(bytes);
  if (!parsed.object) {
    onDisk = OnDisk::unparsable;
    complaint = std::move(parsed.error);
    loaded = true;
    return;
  }
  onDisk = OnDisk::parsed;
  take(std::move(*parsed.object));
}

/// Makes what was read the current values, renaming legacy keys and keeping what could not be written.
void ConfigFile::State::take(JsonObject parsed) {
  if (const int count = renameKeys(parsed, legacyKeyPrefix, keyPrefix); count > 0) {
    pendingLogs.emplace_back(fmt::format("CONFIG: renamed {} settings keys from the old '{}' prefix to '{}'", count,
                                         legacyKeyPrefix, keyPrefix),
                             LogLevel::info);
    renamed = true;
  }
  for (const auto& [key, value] : unwritten) {
    if (value) {
      parsed.insert_or_assign(key, *value);
    } else {
      parsed.erase(key);
    }
  }
  if (std::exchange(loaded, true)) {
    for (auto& key : differingKeys(values, parsed)) changedByOthers.insert(std::move(key));
  }
  values = std::move(parsed);
}

/// In words, why the unparsable file must not be written over.
std::optional<std::string> ConfigFile::State::keepUnparsable(const fs::path& target) {
  const auto original = stampOf(target);
  if (original && original == keptAside) return std::nullopt;
  const auto kept = keepAside(target, unreadableSuffix);
  if (!kept.copy) return fmt::format("the unreadable file could not be kept: {}", kept.error);
  keptAside = original;
  pendingLogs.emplace_back(fmt::format("CONFIG: {} could not be read ({}); it was kept as {}", file().string(),
                                       complaint, kept.copy->string()),
                           LogLevel::warning);
  return std::nullopt;
}

void ConfigFile::State::write(const fs::path& target, DirectoryLock::State lock, const ReplaceObserver& observer) {
  renamed = false;
  auto error = onDisk == OnDisk::unparsable ? keepUnparsable(target) : std::nullopt;
  if (!error) {
    createDirectory();  // somebody may have removed it
    // Only the holder of the lock may use the plain name, so that one found there was left by a process
    // that died.
    const auto temporary = lock == DirectoryLock::State::held ? target.string() + ".tmp"
                                                              : fmt::format("{}.{}.tmp", target.string(), ::getpid());
    auto text = serialise(values);
    auto replacement = replaceFile(target, temporary, text, observer);
    lastWrite = std::chrono::steady_clock::now();
    if (replacement.stamp) {
      noteStamp(replacement.stamp);
      onDisk = OnDisk::parsed;
      bytes = std::move(text);
      unwritten.clear();
      return;
    }
    error = std::move(replacement.error);
  }
  pendingLogs.emplace_back(fmt::format("CONFIG: write to {} failed: {}", file().string(), *error), LogLevel::error);
}

ConfigFile::ConfigFile(fs::path directory, LogSink sink, ReplaceObserver observer)
    : sink_(std::move(sink)), observer_(std::move(observer)), state_(std::make_unique<State>()) {
  state_->directory = std::move(directory);
}

ConfigFile::~ConfigFile() = default;

void ConfigFile::flushPendingLogs() {
  std::vector<std::pair<std::string, LogLevel>> lines;
  {
    const std::lock_guard guard(lock_);
    lines.swap(state_->pendingLogs);
  }
  if (!sink_) return;
  for (const auto& [message, level] : lines) sink_(message, level);
}

template <class Read>
auto ConfigFile::withLoaded(const Read& read) {
  std::unique_lock guard(lock_);
  if (!state_->loaded) state_->refresh();
  auto result = read(*state_);
  const bool renamed = state_->renamed;
  const bool hasLogs = !state_->pendingLogs.empty();
  guard.unlock();
  if (renamed) {
    change([](const State&) { return Edits{}; });
  } else if (hasLogs) {
    flushPendingLogs();
  }
  return result;
}

bool ConfigFile::change(const std::function<Edits(const State&)>& edit) {
  // No lock of this process is held while another process is waited for.
  std::optional<bool> stored;
  for (int attempt = 1; !(stored = tryChange(edit, attempt < lockAttempts ? Turn::wait : Turn::take)); ++attempt) {
    std::this_thread::sleep_for(lockPause);
  }
  flushPendingLogs();
  return *stored;
}

std::optional<bool> ConfigFile::tryChange(const std::function<Edits(const State&)>& edit, Turn turn) {
  const std::lock_guard guard(lock_);
  auto& state = *state_;
  if (turn == Turn::wait && state.justWrote()) return std::nullopt;
  const auto target = followLinks(state.file());
  const DirectoryLock processes(target.parent_path());
  if (turn == Turn::wait && processes.state() == DirectoryLock::State::busy) return std::nullopt;

  state.refresh();
  auto edits = edit(state);
  bool needsWrite = state.renamed || (!edits.values.empty() && !state.unwritten.empty());
  for (auto& [key, value] : edits.values) {
    const auto found = state.values.find(key);
    const bool missing = found == state.values.end();
    const bool same = value ? !missing && found->second == *value : missing;
    // The file may have lost, or spoiled, what memory still has.
    const bool stored = same && (!value || state.onDisk == State::OnDisk::parsed);
    if (stored && !needsWrite) continue;
    needsWrite = true;
    if (value) {
      state.values.insert_or_assign(key, *value);
    } else if (!missing) {
      state.values.erase(found);
    }
    state.unwritten.insert_or_assign(key, std::move(value));
  }
  if (needsWrite) state.write(target, processes.state(), observer_);
  if (!edits.note.empty()) state.pendingLogs.emplace_back(std::move(edits.note), LogLevel::info);
  return state.unwritten.empty();
}

std::optional<long long> ConfigFile::integer(std::string_view key) {
  return withLoaded([&](const State& state) { return asInteger(lookup(state.values, key)); });
}

std::optional<bool> ConfigFile::boolean(std::string_view key) {
  return withLoaded([&](const State& state) { return asBoolean(lookup(state.values, key)); });
}

std::optional<std::string> ConfigFile::string(std::string_view key) {
  return withLoaded([&](const State& state) { return asString(lookup(state.values, key)); });
}

std::optional<ConfigValue> ConfigFile::value(std::string_view key) {
  return withLoaded([&](const State& state) { return asValue(lookup(state.values, key)); });
}

std::vector<std::string> ConfigFile::keys() {
  return withLoaded([](const State& state) {
    std::vector<std::string> keys;
    for (const auto& entry : state.values) keys.push_back(entry.first);
    return keys;
  });
}

bool ConfigFile::set(std::string_view key, const ConfigValue& value) {
  return change([&](const State&) { return Edits{{{validUtf8(key), fromValue(value)}}, {}}; });
}

bool ConfigFile::remove(std::string_view key) {
  return change([&](const State&) { return Edits{{{validUtf8(key), std::nullopt}}, {}}; });
}

std::string ConfigFile::stringOrStore(std::string_view key, std::string candidate) {
  if (auto stored = string(key); stored && !stored->empty()) return *stored;
  std::string result;
  change([&](const State& state) {
    const auto stored = asString(lookup(state.values, key));
    if (stored && !stored->empty()) {
      result = *stored;
      return Edits{};
    }
    result = candidate;
    return Edits{{{std::string(key), Json(candidate)}}, {}};
  });
  return result;
}

void ConfigFile::importLegacy(const std::vector<std::string>& keys, const LegacyLookup& lookUp) {
  if (!withLoaded([](const State& state) { return state.values.empty(); })) return;
  // Asked for without the lock: the preferences may be another process's to answer for.
  std::map<std::string, std::optional<Json>> found;
  for (const auto& key : keys) {
    auto value = lookUp(key);
    if (!value && key.starts_with(keyPrefix)) {
      value = lookUp(std::string(legacyKeyPrefix) + key.substr(keyPrefix.size()));
    }
    if (value) found.insert_or_assign(key, fromValue(*value));
  }
  if (found.empty()) return;
  const auto note =
      fmt::format("CONFIG: migrated {} values from old UserDefaults to {}", found.size(), fileURL().string());
  change([&](const State& state) { return state.values.empty() ? Edits{found, note} : Edits{}; });
}

std::vector<std::string> ConfigFile::reloadIfChanged() {
  {
    const std::lock_guard guard(lock_);
    if (state_->loaded && state_->mayHaveChanged()) state_->refresh();
  }
  return withLoaded([](State& state) {
    const auto changed = std::exchange(state.changedByOthers, {});
    return std::vector<std::string>(changed.begin(), changed.end());
  });
}

std::optional<std::string> ConfigFile::complaint() {
  {
    const std::lock_guard guard(lock_);
    if (state_->loaded && state_->mayHaveChanged()) state_->refresh();
  }
  return withLoaded([](const State& state) {
    return state.onDisk == State::OnDisk::unparsable ? std::optional(state.complaint) : std::nullopt;
  });
}

fs::path ConfigFile::directory() {
  const std::lock_guard guard(lock_);
  state_->makeDirectory();
  return state_->directory;
}

fs::path ConfigFile::fileURL() {
  return directory() / fileName;
}

void ConfigFile::useDirectory(fs::path directory) {
  const std::lock_guard guard(lock_);
  *state_ = State();
  state_->directory = std::move(directory);
}

}  // namespace tessaspaces
