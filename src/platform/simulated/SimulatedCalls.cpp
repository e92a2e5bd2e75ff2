// The side of SimulatedWorld that the program meets: call log, faults, consistent reading.
#include <algorithm>

#include "platform/simulated/SimulatedWorld.h"

namespace tessaspaces {

namespace {

constexpr std::size_t keptCalls = 10000;

}  // namespace

class SimulatedWorld::Scope final : public ReadScope {
 public:
  explicit Scope(SimulatedWorld& world) : world_(world) {}
  ~Scope() override { world_.closeReadScope(thread_); }

 private:
  SimulatedWorld& world_;
  const std::thread::id thread_ = std::this_thread::get_id();
};

void SimulatedWorld::setFaults(SimulatedFaults faults) {
  const std::lock_guard guard(lock_);
  faults_ = std::move(faults);
}

void SimulatedWorld::editFaults(const std::function<void(SimulatedFaults&)>& change) {
  const std::lock_guard guard(lock_);
  change(faults_);
}

SimulatedFaults SimulatedWorld::faults() const {
  const std::lock_guard guard(lock_);
  return faults_;
}

void SimulatedWorld::beforeNext(Operation operation, std::function<void()> happening) {
  const std::lock_guard guard(lock_);
  beforeNext_.emplace(operation, std::move(happening));
}

std::vector<std::string> SimulatedWorld::calls() const {
  const std::lock_guard guard(lock_);
  std::vector<std::string> texts;
  for (const auto& call : calls_) texts.push_back(call.text);
  return texts;
}

std::vector<std::string> SimulatedWorld::calls(Operation operation) const {
  const std::lock_guard guard(lock_);
  std::vector<std::string> texts;
  for (const auto& call : calls_) {
    if (call.operation == operation) texts.push_back(call.text);
  }
  return texts;
}

void SimulatedWorld::clearCalls() {
  const std::lock_guard guard(lock_);
  calls_.clear();
}

void SimulatedWorld::record(Operation operation, std::string_view arguments) {
  std::vector<std::function<void()>> happenings;
  {
    const std::lock_guard guard(lock_);
    std::string text(operationName(operation));
    text.append("(").append(arguments).append(")");
    calls_.push_back({operation, std::move(text)});
    if (calls_.size() > keptCalls) calls_.pop_front();
    const auto [first, last] = beforeNext_.equal_range(operation);
    for (auto position = first; position != last; ++position) happenings.push_back(std::move(position->second));
    beforeNext_.erase(first, last);
  }
  for (const auto& happening : happenings) happening();
}

bool SimulatedWorld::ask(Operation operation, std::string_view arguments) {
  record(operation, arguments);
  const std::lock_guard guard(lock_);
  return !faults_.unanswered.contains(operation);
}

void SimulatedWorld::request(Operation operation, std::string_view arguments, std::function<void(WorldState&)> effect) {
  record(operation, arguments);
  std::optional<Duration> delay;
  {
    const std::lock_guard guard(lock_);
    if (faults_.ignored.contains(operation)) return;
    const auto delayed = faults_.delayed.find(operation);
    if (delayed != faults_.delayed.end()) delay = delayed->second;
  }
  if (!delay) return edit(effect);
  editLater(*delay, std::move(effect));
}

std::shared_ptr<const WorldState> SimulatedWorld::view() const {
  const std::lock_guard guard(lock_);
  const auto scope = scopes_.find(std::this_thread::get_id());
  return scope == scopes_.end() ? state_ : scope->second.state;
}

std::unique_ptr<ReadScope> SimulatedWorld::openReadScope() {
  record(Operation::beginRead, {});
  const std::lock_guard guard(lock_);
  auto& scope = scopes_[std::this_thread::get_id()];
  if (scope.depth++ == 0) scope.state = state_;
  return std::make_unique<Scope>(*this);
}

void SimulatedWorld::closeReadScope(std::thread::id thread) {
  const std::lock_guard guard(lock_);
  const auto scope = scopes_.find(thread);
  if (--scope->second.depth == 0) scopes_.erase(scope);
}

}  // namespace tessaspaces
