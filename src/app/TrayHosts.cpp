#include "app/TrayHosts.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QPointer>
#include <cstdlib>
#include <memory>
#include <utility>

#ifdef TESSASPACES_HAS_X11
#include <xcb/xcb.h>
#endif

#include "app/SessionBus.h"

namespace tessaspaces {
namespace {

const QString watcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");

#ifdef TESSASPACES_HAS_X11
template <class Reply>
std::unique_ptr<Reply, decltype(&std::free)> owned(Reply* reply) {
  return {reply, &std::free};
}

xcb_connection_t* connection() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x11 != nullptr ? x11->connection() : nullptr;
}

int screenNumber() {
  char* host = nullptr;
  int display = 0;
  int screen = 0;
  if (xcb_parse_display(nullptr, &host, &display, &screen) != 0) std::free(host);
  return screen;
}

std::optional<QColor> symbolColorOf(xcb_connection_t* connection, xcb_window_t tray, xcb_atom_t colors) {
  const auto reply = owned(xcb_get_property_reply(
      connection, xcb_get_property(connection, 0, tray, colors, XCB_ATOM_CARDINAL, 0, 12), nullptr));
  // Four colours of three 16-bit parts each; the first one is for symbols.
  if (!reply || reply->format != 32 || reply->value_len < 3) return std::nullopt;
  const auto* parts = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return QColor::fromRgba64(static_cast<ushort>(parts[0]), static_cast<ushort>(parts[1]),
                            static_cast<ushort>(parts[2]));
}
#endif

}  // namespace

TrayHosts::TrayHosts(std::function<void()> changed) : changed_(std::move(changed)) {}

TrayHosts::~TrayHosts() {
  if (qApp != nullptr) qApp->removeNativeEventFilter(this);
}

void TrayHosts::start() {
#ifdef TESSASPACES_HAS_X11
  if (auto* x11 = connection()) {
    const std::string name = "_NET_SYSTEM_TRAY_S" + std::to_string(screenNumber());
    const auto selection = xcb_intern_atom(x11, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    const auto manager = xcb_intern_atom(x11, 0, 7, "MANAGER");
    if (const auto reply = owned(xcb_intern_atom_reply(x11, selection, nullptr))) selection_ = reply->atom;
    if (const auto reply = owned(xcb_intern_atom_reply(x11, manager, nullptr))) manager_ = reply->atom;
    qApp->installNativeEventFilter(this);
    lookAtScreen();
  }
#endif
  const QPointer guard(this);
  SessionBus::connect(
      [guard](QDBusConnection bus) {
        if (!guard) return;
        auto* watcher = new QDBusServiceWatcher(watcherService, bus, QDBusServiceWatcher::WatchForOwnerChange, guard);
        QObject::connect(watcher, &QDBusServiceWatcher::serviceRegistered, guard, &TrayHosts::askNotifierWatcher);
        QObject::connect(watcher, &QDBusServiceWatcher::serviceUnregistered, guard,
                         [guard] { guard->setNotifierHost(false); });
        bus.connect(watcherService, watcherPath, watcherService, "StatusNotifierHostRegistered", guard,
                    SLOT(askNotifierWatcher()));
        guard->askNotifierWatcher();
      },
      [guard] {
        if (guard) guard->setNotifierHost(false);
      });
}

void TrayHosts::askNotifierWatcher() {
  auto call = QDBusMessage::createMethodCall(watcherService, watcherPath, "org.freedesktop.DBus.Properties", "Get");
  call.setAutoStartService(false);
  call << watcherService << QStringLiteral("IsStatusNotifierHostRegistered");
  auto* answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
  QObject::connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
    answer->deleteLater();
    const QDBusPendingReply<QDBusVariant> reply = *answer;
    setNotifierHost(reply.isValid() && reply.value().variant().toBool());
  });
}

void TrayHosts::setNotifierHost(bool present) {
  const bool news = !std::exchange(busAsked_, true) || notifierHost_ != present;
  notifierHost_ = present;
  if (news) changed_();
}

void TrayHosts::lookAtScreen() {
#ifdef TESSASPACES_HAS_X11
  auto* x11 = connection();
  if (x11 == nullptr) return;
  constexpr std::string_view colorsName = "_NET_SYSTEM_TRAY_COLORS";
  const auto ownerCookie = xcb_get_selection_owner(x11, selection_);
  const auto colorsCookie = xcb_intern_atom(x11, 0, colorsName.size(), colorsName.data());
  const auto owner = owned(xcb_get_selection_owner_reply(x11, ownerCookie, nullptr));
  const auto colors = owned(xcb_intern_atom_reply(x11, colorsCookie, nullptr));
  embedder_ = owner && owner->owner != XCB_NONE;
  if (embedder_ && colors) symbolColor_ = symbolColorOf(x11, owner->owner, colors->atom);
  if (embedder_) changed_();
#endif
}

bool TrayHosts::nativeEventFilter([[maybe_unused]] const QByteArray& type, [[maybe_unused]] void* message, qintptr*) {
#ifdef TESSASPACES_HAS_X11
  if (type != "xcb_generic_event_t") return false;
  const auto* event = static_cast<const xcb_generic_event_t*>(message);
  if ((event->response_type & 0x7f) != XCB_CLIENT_MESSAGE) return false;
  const auto* announcement = reinterpret_cast<const xcb_client_message_event_t*>(event);
  // A tray announces itself on the root window by the selection that it now owns.
  if (announcement->type == manager_ && announcement->data.data32[1] == selection_) lookAtScreen();
#endif
  return false;
}

}  // namespace tessaspaces
