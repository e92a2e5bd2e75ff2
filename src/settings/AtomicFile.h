#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tessaspaces {

/// Tells one state of a file from the next without reading it.
struct FileStamp {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::int64_t size = 0;
  std::int64_t modified = 0;  // nanoseconds since 1970
  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

/// Absent when there is no such file, or none that can be asked about.
[[nodiscard]] std::optional<FileStamp> stampOf(const std::filesystem::path& file);

struct FileContents {
  enum class State { missing, unreadable, read };
  State state = State::missing;
  std::string bytes;
  std::string reason;  // why it is unreadable, in words
  std::optional<FileStamp> stamp;
};

/// Reads a regular file of a sane size as a whole; never waits, whatever lies at the path.
[[nodiscard]] FileContents readFile(const std::filesystem::path& file);

/// Where a file that is a symbolic link really lies, there or not; the path itself when the links form a loop.
[[nodiscard]] std::filesystem::path followLinks(const std::filesystem::path& file);

/// The steps of a replacement, told to tests that interrupt it.
enum class ReplaceStage { created, written, synced, replaced };
using ReplaceObserver = std::function<void(ReplaceStage)>;

/// Either the stamp of the new file or, in words, why the old one is still in place.
struct Replacement {
  std::optional<FileStamp> stamp;
  std::string error;
};

/// Puts a new file with these bytes in the place of `file`: whoever looks at any moment, and whatever
/// interrupts this, sees the old file whole or the new one whole. The mode and owner of the old file stay;
/// without one only the user may read the new one. `temporary` is the file in the same folder that is
/// filled first; one left behind by an interrupted run is taken away.
[[nodiscard]] Replacement replaceFile(const std::filesystem::path& file, const std::filesystem::path& temporary,
                                      std::string_view bytes, const ReplaceObserver& observer = {});

/// Where the copy lies, or, in words, why there is none.
struct KeptCopy {
  std::optional<std::filesystem::path> copy;
  std::string error;
};

/// Keeps what lies at `file` beside it under its name and `suffix`, or that and a number (".2" onwards)
/// where that name is taken, and takes no other name twice for the same file. Makes a hard link, or else a
/// copy, or else renames the file.
[[nodiscard]] KeptCopy keepAside(const std::filesystem::path& file, std::string_view suffix);

/// An advisory lock on a folder among processes, tried once without waiting and held until destruction.
class DirectoryLock {
 public:
  enum class State {
    held,
    busy,        // another holds it
    unavailable  // the folder cannot be locked at all
  };
  explicit DirectoryLock(const std::filesystem::path& directory);
  ~DirectoryLock();
  DirectoryLock(const DirectoryLock&) = delete;
  DirectoryLock& operator=(const DirectoryLock&) = delete;

  [[nodiscard]] State state() const { return state_; }

 private:
  int descriptor_ = -1;
  State state_ = State::unavailable;
};

}  // namespace tessaspaces
