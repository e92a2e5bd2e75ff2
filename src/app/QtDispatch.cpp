#include "app/QtDispatch.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QSocketNotifier>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <utility>

namespace tessaspaces {
namespace {

std::chrono::milliseconds wholeMilliseconds(Duration duration) {
  return std::max(std::chrono::ceil<std::chrono::milliseconds>(duration), std::chrono::milliseconds(0));
}

/// Qt lets the coarser kinds of timer fire early.
constexpr Qt::TimerType exact = Qt::PreciseTimer;

class TimerRegistration final : public Registration {
 public:
  TimerRegistration(Duration interval, std::function<void()> tick) : tick_(std::move(tick)) {
    timer_.setTimerType(exact);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
      // A copy, since a tick may let go of its own registration.
      const auto run = tick_;
      run();
    });
    timer_.start(std::max(wholeMilliseconds(interval), std::chrono::milliseconds(1)));
  }

 private:
  std::function<void()> tick_;
  QTimer timer_;
};

class WatchRegistration final : public Registration {
 public:
  WatchRegistration(int descriptor, std::function<void()> ready)
      : ready_(std::move(ready)), notifier_(descriptor, QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] {
      const auto run = ready_;
      run();
    });
  }

 private:
  std::function<void()> ready_;
  QSocketNotifier notifier_;
};

}  // namespace

/// One posted event for each job, so that a job which turns the loop itself (a modal alert) does not hold
/// up those behind it.
class QtDispatch::Queue final : public QObject {
 public:
  void post(std::function<void()> work) { QCoreApplication::postEvent(this, new Job(std::move(work))); }

 protected:
  bool event(QEvent* event) override {
    if (event->type() != Job::type()) return QObject::event(event);
    static_cast<Job*>(event)->work();
    return true;
  }

 private:
  struct Job final : QEvent {
    explicit Job(std::function<void()> job) : QEvent(type()), work(std::move(job)) {}
    static Type type() {
      static const int registered = QEvent::registerEventType();
      return static_cast<Type>(registered);
    }
    std::function<void()> work;
  };
};

QtDispatch::QtDispatch() : queue_(std::make_unique<Queue>()), pool_(std::make_unique<WorkerPool>()) {}

QtDispatch::~QtDispatch() {
  close();
}

void QtDispatch::close() {
  {
    const std::lock_guard lock(mutex_);
    closed_ = true;
  }
  changed_.notify_all();
  QCoreApplication::removePostedEvents(queue_.get());
  pool_.reset();
}

void QtDispatch::async(std::function<void()> work) {
  queue_->post(std::move(work));
}

void QtDispatch::sync(std::function<void()> work) {
  if (isMainThread()) {
    work();
    return;
  }
  enum class State { waiting, running, done, abandoned };
  const auto state = std::make_shared<State>(State::waiting);
  async([this, state, &work] {
    {
      const std::lock_guard lock(mutex_);
      if (*state == State::abandoned) return;
      *state = State::running;
    }
    work();
    {
      const std::lock_guard lock(mutex_);
      *state = State::done;
    }
    changed_.notify_all();
  });
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [&] { return *state == State::done || (closed_ && *state == State::waiting); });
  if (*state == State::waiting) *state = State::abandoned;
}

void QtDispatch::after(Duration delay, std::function<void()> work) {
  const auto start = [this, delay, work = std::move(work)] {
    QTimer::singleShot(wholeMilliseconds(delay), exact, queue_.get(), work);
  };
  if (isMainThread()) {
    start();
  } else {
    async(start);
  }
}

RegistrationRef QtDispatch::every(Duration interval, std::function<void()> tick) {
  return std::make_unique<TimerRegistration>(interval, std::move(tick));
}

RegistrationRef QtDispatch::watch(int descriptor, std::function<void()> ready) {
  return std::make_unique<WatchRegistration>(descriptor, std::move(ready));
}

void QtDispatch::background(std::function<void()> work) {
  const std::lock_guard lock(mutex_);
  if (!closed_) pool_->run(std::move(work));
}

bool QtDispatch::isMainThread() const {
  return QThread::currentThread() == queue_->thread();
}

TimePoint QtDispatch::now() const {
  return std::chrono::steady_clock::now();
}

bool QtDispatch::isEnding() const {
  const std::lock_guard lock(mutex_);
  return closed_;
}

void QtDispatch::sleep(Duration duration) {
  std::unique_lock lock(mutex_);
  changed_.wait_for(lock, duration, [this] { return closed_; });
}

}  // namespace tessaspaces
