#include "platform/x11/X11Platform.h"

#include <unistd.h>

#include <atomic>
#include <chrono>

#include "base/Report.h"
#include "platform/x11/DesktopEvents.h"
#include "platform/x11/EventPump.h"
#include "platform/x11/PagerLayout.h"
#include "platform/x11/Text.h"
#include "platform/x11/X11AccessibilityWindows.h"
#include "platform/x11/X11Applications.h"
#include "platform/x11/X11Capture.h"
#include "platform/x11/X11HotKeys.h"
#include "platform/x11/X11InputEvents.h"
#include "platform/x11/X11LoginItem.h"
#include "platform/x11/X11Preferences.h"
#include "platform/x11/X11Screens.h"
#include "platform/x11/X11Session.h"
#include "platform/x11/X11WindowList.h"
#include "platform/x11/X11WindowServer.h"

namespace tessaspaces {
namespace {

constexpr auto preparationDelay = std::chrono::seconds(2);

}  // namespace

/// Declared in the order in which each part needs the ones before it.
struct X11Platform::Parts {
  Parts(std::unique_ptr<Connection> opened, std::unique_ptr<Dispatch> given)
      : connection(std::move(opened)), dispatchOwner(std::move(given)), dispatch(*dispatchOwner) {}

  void startEvents();
  void handleLostConnection();

  std::unique_ptr<Connection> connection;
  std::unique_ptr<Dispatch> dispatchOwner;
  Dispatch& dispatch;  // good for its background jobs even while it is being destroyed
  std::atomic<bool> lost = false;
  std::function<void()> lostHandler;  // main thread only
  EventPump pump{*connection, dispatch};
  Reader reader{*connection};
  X11Screens screens{*connection, reader};
  PagerLayout pagerLayout{*connection, pump};
  DesktopCount desktopCount{*connection, reader, dispatch};
  X11WindowServer windowServer{*connection, reader, screens, pump, pagerLayout, desktopCount, dispatch};
  X11WindowList windowList{reader, windowServer};
  DesktopFiles desktopFiles{DesktopFiles::standardFolders(), languagesFrom(environment)};
  X11Applications applications{*connection, reader, desktopFiles};
  X11AccessibilityWindows accessibility{*connection, reader};
  X11Preferences preferences{*connection};
  X11InputEvents inputEvents{*connection, preferences, windowServer, screens};
  X11HotKeys hotKeys{*connection, pump, screens};
  X11Capture capture{*connection, reader, screens, dispatch};
  X11LoginItem loginItem{X11LoginItem::standardFile(), X11LoginItem::ownExecutable()};
  X11Permissions permissions{*connection};
  DesktopEvents desktopEvents{*connection, reader, windowServer, pump};
};

void X11Platform::Parts::startEvents() {
  // The hot keys first: what they start is what the user waits for.
  pump.add(hotKeys);
  pump.add(screens);
  pump.add(desktopEvents);
  pump.add(pagerLayout);
  screens.start();
  desktopEvents.start();
  pump.start();
  // Not at the start, where everybody is in a hurry, and not under the first key that moves a window.
  pump.after(preparationDelay, [this] { dispatch.background([this] { desktopFiles.prepare(); }); });
}

void X11Platform::Parts::handleLostConnection() {
  if (lost.exchange(true)) return;
  report(ReportLevel::error, "X11: the server has closed the connection");
  dispatch.async([this] {
    if (lostHandler) lostHandler();
  });
}

std::unique_ptr<X11Platform> X11Platform::open(std::unique_ptr<Dispatch> dispatch, std::string* error,
                                               X11Events events) {
  std::string reason;
  auto connection = Connection::open(reason);
  if (!connection) {
    if (error != nullptr) *error = reason;
    return nullptr;
  }
  auto parts = std::make_unique<Parts>(std::move(connection), std::move(dispatch));
  for (auto* channel : {&parts->connection->requests(), &parts->connection->events()}) {
    channel->setLostHandler([&parts = *parts] { parts.handleLostConnection(); });
  }
  if (events == X11Events::watched) parts->startEvents();
  return std::unique_ptr<X11Platform>(new X11Platform(std::move(parts)));
}

X11Platform::X11Platform(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}

X11Platform::~X11Platform() {
  // Parts that end after the dispatch still speak to the server; if it has gone, nobody is left to hear of that.
  parts_->lost = true;
  parts_->lostHandler = nullptr;
  parts_->pump.stop();
  parts_->capture.stop();
  parts_->reader.stopKeepingRoot();
  // Its background jobs may be in the middle of a switch: they end while everything is still there.
  parts_->dispatchOwner.reset();
}

WindowServer& X11Platform::windowServer() {
  return parts_->windowServer;
}
WindowList& X11Platform::windowList() {
  return parts_->windowList;
}
Screens& X11Platform::screens() {
  return parts_->screens;
}
Applications& X11Platform::applications() {
  return parts_->applications;
}
AccessibilityWindows& X11Platform::accessibility() {
  return parts_->accessibility;
}
InputEvents& X11Platform::inputEvents() {
  return parts_->inputEvents;
}
HotKeyRegistrar& X11Platform::hotKeys() {
  return parts_->hotKeys;
}
WindowCapture& X11Platform::windowCapture() {
  return parts_->capture;
}
Preferences& X11Platform::preferences() {
  return parts_->preferences;
}
LoginItem& X11Platform::loginItem() {
  return parts_->loginItem;
}
Permissions& X11Platform::permissions() {
  return parts_->permissions;
}
Dispatch& X11Platform::dispatch() {
  return parts_->dispatch;
}

std::int32_t X11Platform::processID() const {
  return static_cast<std::int32_t>(::getpid());
}

std::vector<SessionFinding> X11Platform::examineSession() {
  return examineX11Session(*parts_->connection, parts_->windowServer, parts_->screens);
}

void X11Platform::setConnectionLostHandler(std::function<void()> handler) {
  parts_->lostHandler = std::move(handler);
}

std::uint64_t X11Platform::roundTrips() const {
  return parts_->connection->requests().roundTrips() + parts_->connection->events().roundTrips() +
         parts_->capture.roundTrips();
}

}  // namespace tessaspaces
