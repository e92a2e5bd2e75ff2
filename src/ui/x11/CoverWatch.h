#pragma once

#include <QRect>
#include <QTimer>
#include <QWindow>
#include <cstdint>
#include <optional>
#include <vector>

#include "base/Signal.h"
#include "platform/x11/Xcb.h"

namespace tessaspaces {

/// Notices when windows of other programs have come to lie over most of a panel and stay there: a screen locker, say.
/// What is small, like a notification, or gone again in a moment, does not count. Asks the server for nothing while no
/// panel is open. Main thread.
///
/// The server's own notices of visibility do not serve: it calls every window whose content is redirected, as
/// compositors and previews want it, fully visible.
class CoverWatch {
 public:
  explicit CoverWatch(xcb_connection_t* connection);

  void add(QWindow& window);
  void remove(QWindow& window);
  /// To be given every event.
  void handle(const xcb_generic_event_t& event);
  /// How it is at this moment; asks the server.
  [[nodiscard]] bool isCovered(const QWindow& window) const;

  Signal<QWindow*> covered;

 private:
  struct Panel {
    QWindow* window = nullptr;
    bool seenCovered = false;
  };

  /// Asks for news of the top-level windows, or no more, besides what Qt asks for.
  void listen(bool wanted);
  void look();
  [[nodiscard]] bool isOurs(xcb_window_t window) const;
  /// All top-level windows, from the lowest to the highest.
  [[nodiscard]] std::vector<xcb_window_t> stacking() const;
  [[nodiscard]] bool isCovered(xcb_window_t panel, const std::vector<xcb_window_t>& stacking) const;

  xcb_connection_t* connection_;
  xcb_window_t root_;
  bool hasShape_ = false;
  /// What was asked for before this listened; absent while it does not.
  std::optional<std::uint32_t> maskBefore_;
  std::vector<Panel> panels_;
  QTimer timer_;
};

}  // namespace tessaspaces
