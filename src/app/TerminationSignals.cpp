#include "app/TerminationSignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

namespace tessaspaces {
namespace {

constexpr std::array signals{SIGTERM, SIGINT, SIGHUP};

/// What the handler writes to and the event loop reads from. Never closed: a handler may be running.
std::array<int, 2> wakePipe{-1, -1};

void handle(int) {
  const int before = errno;
  const char byte = 0;
  [[maybe_unused]] const auto written = write(wakePipe[1], &byte, 1);
  errno = before;
}

}  // namespace

TerminationSignals::TerminationSignals(std::function<void()> asked) {
  if (wakePipe[0] < 0 && pipe2(wakePipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
  notifier_ = std::make_unique<QSocketNotifier>(wakePipe[0], QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [asked = std::move(asked)] {
    std::array<char, 16> bytes;
    while (read(wakePipe[0], bytes.data(), bytes.size()) > 0) {
    }
    asked();
  });
  struct sigaction action {};
  action.sa_handler = handle;
  action.sa_flags = SA_RESTART;
  for (const int signal : signals) {
    struct sigaction before {};
    if (sigaction(signal, nullptr, &before) != 0 || before.sa_handler == SIG_IGN) continue;
    sigaction(signal, &action, nullptr);
    before_.emplace_back(signal, before);
  }
}

TerminationSignals::~TerminationSignals() {
  for (const auto& [signal, action] : before_) sigaction(signal, &action, nullptr);
}

}  // namespace tessaspaces
