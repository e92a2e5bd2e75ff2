#pragma once

#include <deque>
#include <functional>
#include <memory>

#include "platform/Dispatch.h"

namespace tessaspaces {

/// Jobs off the main thread, one after another: each may need much memory, and none is in a hurry. Main thread.
class SerialWork {
 public:
  explicit SerialWork(Dispatch& dispatch) : dispatch_(dispatch) {}
  /// Jobs that have not begun are dropped; of one that has, the end is not reported any more.
  ~SerialWork() = default;
  SerialWork(const SerialWork&) = delete;
  SerialWork& operator=(const SerialWork&) = delete;

  /// Runs on the main thread when the job that returned it is done.
  using Report = std::function<void()>;
  /// `job` must not use anything that may go with this object.
  void add(std::function<Report()> job);

 private:
  void begin();

  Dispatch& dispatch_;
  std::deque<std::function<Report()>> jobs_;
  bool working_ = false;
  std::shared_ptr<SerialWork*> self_ = std::make_shared<SerialWork*>(this);
};

}  // namespace tessaspaces
