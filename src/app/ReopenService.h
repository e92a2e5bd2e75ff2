#pragma once

#include <functional>
#include <memory>

namespace tessaspaces {

/// How a second copy of the program tells the running one that the user has launched it again: the
/// session bus name "local.tessaspaces" with the `Activate` call of org.freedesktop.Application. Without a
/// session bus nothing happens, on either side.
class ReopenService {
 public:
  /// `reopened` runs on the main thread at each call.
  explicit ReopenService(std::function<void()> reopened);
  ~ReopenService();
  ReopenService(const ReopenService&) = delete;
  ReopenService& operator=(const ReopenService&) = delete;

  /// Takes the name, asynchronously. Main thread.
  void start();

  /// From the second copy. Whether the running one has answered; waits for that at most two seconds.
  static bool notifyRunningCopy();

 private:
  class Object;
  std::shared_ptr<Object> object_;
};

}  // namespace tessaspaces
