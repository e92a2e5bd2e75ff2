#include "ui/wallpapers/SerialWork.h"

#include <utility>

namespace tessaspaces {

void SerialWork::add(std::function<Report()> job) {
  jobs_.push_back(std::move(job));
  if (!working_) begin();
}

void SerialWork::begin() {
  if (jobs_.empty()) return;
  working_ = true;
  auto job = std::move(jobs_.front());
  jobs_.pop_front();
  dispatch_.background([job = std::move(job), &dispatch = dispatch_, weak = std::weak_ptr(self_)] {
    dispatch.async([report = job(), weak] {
      const auto self = weak.lock();
      if (!self) return;
      (*self)->working_ = false;
      (*self)->begin();
      if (report) report();
    });
  });
}

}  // namespace tessaspaces
