#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/WindowServer.h"
#include "platform/x11/Connection.h"
#include "platform/x11/RootState.h"
#include "platform/x11/WindowTable.h"

namespace tessaspaces {

/// Where the parts of the platform get their view of the root and the windows from, so that within a
/// ReadScope all of them share one batch of requests each. Any thread.
class Reader {
 public:
  explicit Reader(Connection& connection) : connection_(connection), rootReader_(connection) {}

  using Root = std::shared_ptr<const RootState>;
  using Windows = std::shared_ptr<const std::vector<WindowRecord>>;

  /// Never null.
  Root root(RootDetail detail);
  /// All client windows front to back; never null.
  Windows windows(WindowDetail detail);
  /// The active window and its WM_CLASS, in one batch: all that a command about it wants to know.
  struct Active {
    /// Absent when there is none, or it is gone.
    std::optional<WindowRecord> window;
    std::vector<std::string> windowClass;
  };
  Active active();
  /// The same as events have kept it right, with no question to the server; null while they have not, and on any other
  /// thread than theirs. Good until the next event, but for the title, which `active` reads when it has changed.
  [[nodiscard]] const Active* knownActive() const;
  [[nodiscard]] std::unique_ptr<ReadScope> beginRead();
  /// A scope of this thread is open: what is read now has to serve all that may be asked in it.
  [[nodiscard]] bool inScope() { return memo() != nullptr; }

  /// The root with the desktops that a window manager serves, as of the last reading; reads when there was
  /// none since `forget`. Right in these, while other parts of it may be out of date. Never null.
  Root numbering();
  /// The events say that the desktops or their window manager changed.
  void forget();

  // While this thread follows the events of the root, the root need not be read again for a scope of this
  // thread: what the events have kept right is as new as the key press among them that asks.
  /// From now on; on the thread that follows the events. `lookAhead` calls `rootChanged` for what the events
  /// that have arrived by now will say.
  void keepRoot(std::function<void()> lookAhead);
  /// The events say that one of the root's properties changed.
  void rootChanged();
  /// The events say that something about the active window changed.
  void activeChanged();
  /// The same of its title, and nothing else: some programs change that many times a second.
  void activeTitleChanged();
  /// Whether this property of the active window counts.
  [[nodiscard]] static bool readsOfActive(const Atoms& atoms, xcb_atom_t property);
  /// Reads the root anew if it has changed. After a burst of events, so that the next key finds it ready.
  void refreshRoot();
  /// The same for the active window. `follow` first sees to it that its changes are heard of from then on; where it is
  /// false they are not, and nothing is kept.
  void refreshActive(const std::function<bool(xcb_window_t)>& follow);
  /// The active window of which `refreshActive` would have to read; absent while it is known, or the root is not.
  [[nodiscard]] std::optional<xcb_window_t> unreadActive() const;
  void stopKeepingRoot();
  /// Whether this is the thread that follows the events.
  [[nodiscard]] bool keeping() const { return keeper_.load() == std::this_thread::get_id(); }

 private:
  class Scope;
  struct Memo;
  Memo* memo();
  static Memo& threadMemo();
  Active readActive(xcb_window_t window);

  Connection& connection_;
  RootReader rootReader_;

  std::atomic<std::thread::id> keeper_{};
  std::function<void()> lookAhead_;   // the keeper's thread only
  Root kept_;                         // the keeper's thread only; null while it is out of date
  std::optional<Active> keptActive_;  // the keeper's thread only; of keptActiveWindow_
  xcb_window_t keptActiveWindow_ = XCB_NONE;
  bool titleChanged_ = false;  // since keptActive_ was read

  // What the events' thread has just read for a command serves the thread that carries it out as well: that the
  // command goes over to it costs no question. Once, and for a moment only.
  static constexpr auto handOverTime = std::chrono::milliseconds(2);

  std::mutex mutex_;  // guards all below
  Root handedOver_;
  std::chrono::steady_clock::time_point handedOverAt_;
  std::uint64_t generation_ = 0;
  Root numbering_;
};

}  // namespace tessaspaces
