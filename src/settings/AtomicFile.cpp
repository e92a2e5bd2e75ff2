#include "settings/AtomicFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

namespace tessaspaces {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t maxBytes = 16 << 20;  // a configuration is a few kilobytes
constexpr int maxCopies = 10000;

std::string reasonOf(int code) {
  return std::generic_category().message(code);
}

class Descriptor {
 public:
  explicit Descriptor(int descriptor) : value_(descriptor) {}
  ~Descriptor() {
    if (value_ >= 0) ::close(value_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  [[nodiscard]] int get() const { return value_; }
  [[nodiscard]] bool isOpen() const { return value_ >= 0; }
  /// 0 or the error code; some file systems report a failed write only now.
  int close() { return ::close(std::exchange(value_, -1)) == 0 ? 0 : errno; }

 private:
  int value_;
};

// The two systems name the same member differently.
template <class Status>
std::int64_t modified(const Status& status) {
  if constexpr (requires { status.st_mtim; }) {
    return std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec;
  } else {
    return std::int64_t{status.st_mtimespec.tv_sec} * 1'000'000'000 + status.st_mtimespec.tv_nsec;
  }
}

FileStamp stampFrom(const struct stat& status) {
  return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino),
          static_cast<std::int64_t>(status.st_size), modified(status)};
}

/// 0 or the error code.
int writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto written = ::write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return errno;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

int openNew(const fs::path& file) {
  return ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR);
}

/// 0 or the error code.
int copyBytes(const fs::path& from, const fs::path& to) {
  const auto contents = readFile(from);
  if (contents.state != FileContents::State::read) return EACCES;
  Descriptor copy(openNew(to));
  if (!copy.isOpen()) return errno;
  int error = writeAll(copy.get(), contents.bytes);
  if (error == 0 && ::fsync(copy.get()) != 0) error = errno;
  if (const int closing = copy.close(); error == 0) error = closing;
  if (error != 0) ::unlink(to.c_str());
  return error;
}

}  // namespace

std::optional<FileStamp> stampOf(const fs::path& file) {
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0) return std::nullopt;
  return stampFrom(status);
}

FileContents readFile(const fs::path& file) {
  const auto unreadable = [](std::string reason) {
    return FileContents{FileContents::State::unreadable, {}, std::move(reason), std::nullopt};
  };
  // Without O_NONBLOCK, a pipe at this place would hold the program up for ever.
  const Descriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!descriptor.isOpen()) {
    // ENOTDIR: a parent is no folder, so there is no such file.
    if (errno == ENOENT || errno == ENOTDIR) return {};
    return unreadable(reasonOf(errno));
  }
  struct stat status {};
  if (::fstat(descriptor.get(), &status) != 0) return unreadable(reasonOf(errno));
  if (!S_ISREG(status.st_mode)) return unreadable("not a regular file");
  if (status.st_size > maxBytes) return unreadable("too large");

  FileContents contents{FileContents::State::read, {}, {}, stampFrom(status)};
  char buffer[16384];
  for (;;) {
    const auto count = ::read(descriptor.get(), buffer, sizeof buffer);
    if (count == 0) return contents;
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return unreadable(reasonOf(errno));
    contents.bytes.append(buffer, static_cast<std::size_t>(count));
    if (std::cmp_greater(contents.bytes.size(), maxBytes)) return unreadable("too large");
  }
}

fs::path followLinks(const fs::path& file) {
  auto target = file;
  for (int links = 0; links < 40; ++links) {
    std::error_code error;
    const auto next = fs::read_symlink(target, error);
    if (error) return target;
    target = target.parent_path() / next;  // an absolute link replaces the whole path
  }
  return file;
}

Replacement replaceFile(const fs::path& file, const fs::path& temporary, std::string_view bytes,
                        const ReplaceObserver& observer) {
  const auto reached = [&](ReplaceStage stage) {
    if (observer) observer(stage);
  };
  int descriptor = openNew(temporary);
  if (descriptor < 0 && errno == EEXIST && ::unlink(temporary.c_str()) == 0) descriptor = openNew(temporary);
  if (descriptor < 0) return {std::nullopt, reasonOf(errno)};
  Descriptor opened(descriptor);
  reached(ReplaceStage::created);

  int error = writeAll(opened.get(), bytes);
  if (error == 0) reached(ReplaceStage::written);
  struct stat old {};
  if (error == 0 && ::stat(file.c_str(), &old) == 0 && S_ISREG(old.st_mode)) {
    // The owner first, since changing it drops mode bits; only root can, and for the rest it is right already.
    if (::fchown(opened.get(), old.st_uid, old.st_gid) != 0) errno = 0;
    if (::fchmod(opened.get(), old.st_mode & 07777) != 0) error = errno;
  }
  // Without this a power cut could leave the new name with nothing in it. EINVAL: nothing to sync there.
  if (error == 0 && ::fsync(opened.get()) != 0 && errno != EINVAL) error = errno;
  struct stat status {};
  if (error == 0 && ::fstat(opened.get(), &status) != 0) error = errno;
  if (const int closing = opened.close(); error == 0) error = closing;
  if (error == 0) reached(ReplaceStage::synced);
  if (error == 0 && ::rename(temporary.c_str(), file.c_str()) != 0) error = errno;
  if (error != 0) {
    ::unlink(temporary.c_str());
    return {std::nullopt, reasonOf(error)};
  }
  reached(ReplaceStage::replaced);

  const auto parent = file.parent_path();
  const Descriptor folder(::open(parent.empty() ? "." : parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.isOpen()) ::fsync(folder.get());
  return {stampFrom(status), {}};
}

KeptCopy keepAside(const fs::path& file, std::string_view suffix) {
  struct stat original {};
  if (::lstat(file.c_str(), &original) != 0) return {std::nullopt, reasonOf(errno)};
  const auto base = file.string() + std::string(suffix);
  for (int number = 1; number <= maxCopies; ++number) {
    const fs::path candidate = number == 1 ? base : fmt::format("{}.{}", base, number);
    if (::link(file.c_str(), candidate.c_str()) == 0) return {candidate, {}};
    struct stat taken {};
    if (::lstat(candidate.c_str(), &taken) == 0) {
      if (taken.st_dev == original.st_dev && taken.st_ino == original.st_ino) return {candidate, {}};
      continue;
    }

    // No hard links here, or not for this kind of file.
    if (S_ISREG(original.st_mode) && copyBytes(file, candidate) == 0) return {candidate, {}};
    if (::rename(file.c_str(), candidate.c_str()) == 0) return {candidate, {}};
    return {std::nullopt, reasonOf(errno)};
  }
  return {std::nullopt, "there are too many copies already"};
}

DirectoryLock::DirectoryLock(const fs::path& directory)
    : descriptor_(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  if (descriptor_ < 0) return;
  if (::flock(descriptor_, LOCK_EX | LOCK_NB) == 0) {
    state_ = State::held;
  } else if (errno == EWOULDBLOCK || errno == EINTR) {
    state_ = State::busy;
  }
}

DirectoryLock::~DirectoryLock() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

}  // namespace tessaspaces
