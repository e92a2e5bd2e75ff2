#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace tessaspaces {

/// Turns SIGTERM, SIGINT and SIGHUP into a call on the main thread while it lives. One at a time.
class TerminationSignals {
 public:
  explicit TerminationSignals(std::function<void()> asked);
  ~TerminationSignals();
  TerminationSignals(const TerminationSignals&) = delete;
  TerminationSignals& operator=(const TerminationSignals&) = delete;

 private:
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace tessaspaces
