#include "platform/x11/Reader.h"

#include <utility>

#include "platform/x11/Properties.h"

namespace tessaspaces {

/// What the innermost thread's scope has read already. `owner` is null while no scope is open.
struct Reader::Memo {
  const Reader* owner = nullptr;
  int depth = 0;
  Root root;
  Windows windows;
  WindowDetail windowDetail = WindowDetail::desktops;
  std::optional<Active> active;
};

class Reader::Scope : public ReadScope {
 public:
  Scope() { ++threadMemo().depth; }
  ~Scope() override {
    auto& memo = threadMemo();
    if (--memo.depth == 0) memo = Memo();
  }
  Scope(const Scope&) = delete;
  Scope& operator=(const Scope&) = delete;
};

Reader::Memo& Reader::threadMemo() {
  static thread_local Memo memo;
  return memo;
}

Reader::Memo* Reader::memo() {
  auto& memo = threadMemo();
  return memo.owner == this ? &memo : nullptr;
}

std::unique_ptr<ReadScope> Reader::beginRead() {
  auto& memo = threadMemo();
  if (memo.owner != nullptr && memo.owner != this) return nullptr;  // another platform's scope: not shared
  memo.owner = this;
  return std::make_unique<Scope>();
}

Reader::Root Reader::root(RootDetail detail) {
  auto* memo = this->memo();
  if (memo != nullptr && memo->root) return memo->root;
  if (memo != nullptr && keeping()) {
    lookAhead_();
    if (kept_) {
      const std::lock_guard lock(mutex_);
      handedOver_ = kept_;
      handedOverAt_ = std::chrono::steady_clock::now();
      return memo->root = kept_;
    }
  } else if (memo != nullptr) {
    const std::lock_guard lock(mutex_);
    if (handedOver_ && std::chrono::steady_clock::now() - handedOverAt_ < handOverTime) {
      return memo->root = std::exchange(handedOver_, nullptr);
    }
  }
  std::uint64_t generation = 0;
  {
    const std::lock_guard lock(mutex_);
    generation = generation_;
  }
  // In a scope the windows are wanted sooner or later.
  auto root = std::make_shared<const RootState>(rootReader_.read(memo != nullptr ? RootDetail::windows : detail));
  if (memo != nullptr) memo->root = root;
  const std::lock_guard lock(mutex_);
  // Not when an event has overtaken this reading.
  if (generation == generation_) numbering_ = root;
  return root;
}

Reader::Windows Reader::windows(WindowDetail detail) {
  auto* memo = this->memo();
  if (memo != nullptr && memo->windows &&
      (memo->windowDetail == WindowDetail::everything || detail == WindowDetail::desktops)) {
    return memo->windows;
  }
  const auto root = this->root(RootDetail::windows);
  const auto& clients = root->clients;
  auto windows = std::make_shared<const std::vector<WindowRecord>>(
      readWindows(connection_, clients ? *clients : findClients(connection_), detail));
  if (memo != nullptr) {
    memo->windows = windows;
    memo->windowDetail = detail;
  }
  return windows;
}

Reader::Active Reader::active() {
  auto* memo = this->memo();
  if (memo != nullptr && memo->active) return *memo->active;
  const auto window = root(RootDetail::windows)->activeWindow;
  const bool known = memo != nullptr && keeping() && keptActive_ && keptActiveWindow_ == window;
  if (known && std::exchange(titleChanged_, false) && keptActive_->window) {
    keptActive_->window->title = readTitle(connection_, window);
  }
  auto active = known ? *keptActive_ : readActive(window);
  if (memo != nullptr) memo->active = active;
  return active;
}

Reader::Active Reader::readActive(xcb_window_t window) {
  Active active;
  if (window == XCB_NONE) return active;
  auto& channel = connection_.requests();
  const auto windowClass = askProperty(channel, window, XCB_ATOM_WM_CLASS, maxClassBytes / 4);
  auto records = readWindows(connection_, {&window, 1}, WindowDetail::everything);
  active.windowClass = texts(channel.await<xcb_get_property_reply>(windowClass));
  if (!records.empty()) active.window = std::move(records.front());
  return active;
}

const Reader::Active* Reader::knownActive() const {
  const bool known = keeping() && kept_ && keptActive_ && keptActiveWindow_ == kept_->activeWindow;
  return known ? &*keptActive_ : nullptr;
}

Reader::Root Reader::numbering() {
  {
    const std::lock_guard lock(mutex_);
    if (numbering_) return numbering_;
  }
  return this->root(RootDetail::desktops);
}

void Reader::keepRoot(std::function<void()> lookAhead) {
  lookAhead_ = std::move(lookAhead);
  keeper_ = std::this_thread::get_id();
  refreshRoot();
}

void Reader::rootChanged() {
  if (keeping()) kept_.reset();
  const std::lock_guard lock(mutex_);
  handedOver_.reset();
}

void Reader::activeChanged() {
  if (keeping()) keptActive_.reset();
}

void Reader::activeTitleChanged() {
  if (keeping()) titleChanged_ = true;
}

bool Reader::readsOfActive(const Atoms& atoms, xcb_atom_t property) {
  return property == XCB_ATOM_WM_CLASS || readsOfWindow(atoms, property);
}

std::optional<xcb_window_t> Reader::unreadActive() const {
  if (!keeping() || !kept_ || knownActive() != nullptr) return std::nullopt;
  return kept_->activeWindow;
}

void Reader::refreshActive(const std::function<bool(xcb_window_t)>& follow) {
  const auto unread = unreadActive();
  if (!unread) return;
  const auto window = *unread;
  keptActive_.reset();
  if (!follow(window)) return;
  titleChanged_ = false;
  auto active = readActive(window);
  // One that has gone meanwhile is soon not the active one any more.
  if (window != XCB_NONE && !active.window) return;
  keptActiveWindow_ = window;
  keptActive_ = std::move(active);
}

void Reader::refreshRoot() {
  if (!keeping() || kept_) return;
  const auto scope = beginRead();
  RootState fresh = *root(RootDetail::windows);
  // No event tells where the pointer goes.
  fresh.pointer.reset();
  kept_ = std::make_shared<const RootState>(std::move(fresh));
}

void Reader::stopKeepingRoot() {
  if (keeping()) {
    kept_.reset();
    keptActive_.reset();
  }
  keeper_ = std::thread::id();
}

void Reader::forget() {
  const std::lock_guard lock(mutex_);
  ++generation_;
  numbering_.reset();
}

}  // namespace tessaspaces
