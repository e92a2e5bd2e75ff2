#pragma once

#include "platform/x11/EventPump.h"

namespace tessaspaces {

/// Tells the window manager how the desktops lie (_NET_DESKTOP_LAYOUT), which is the right of whoever owns
/// a selection; where another pager owns it, it is left alone. Main thread.
class PagerLayout : public EventListener {
 public:
  PagerLayout(Connection& connection, EventPump& pump) : connection_(connection), pump_(pump) {}
  ~PagerLayout() override { release(); }

  /// Row by row from the top left. A size of 0 gives the selection back.
  void advertise(int rows, int columns);
  [[nodiscard]] bool owning() const { return owning_; }

  void handle(const xcb_generic_event_t& event) override;

 private:
  bool acquire();
  void release();

  Connection& connection_;
  EventPump& pump_;
  bool owning_ = false;
};

}  // namespace tessaspaces
