#pragma once

#include <QSocketNotifier>
#include <csignal>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tessaspaces {

/// Turns SIGTERM, SIGINT and SIGHUP into a call on the main thread while it lives, but for one that is
/// ignored already (nohup). One at a time.
class TerminationSignals {
 public:
  explicit TerminationSignals(std::function<void()> asked);
  ~TerminationSignals();
  TerminationSignals(const TerminationSignals&) = delete;
  TerminationSignals& operator=(const TerminationSignals&) = delete;

 private:
  std::unique_ptr<QSocketNotifier> notifier_;
  /// The signals taken over, with what they did before.
  std::vector<std::pair<int, struct sigaction>> before_;
};

}  // namespace tessaspaces
