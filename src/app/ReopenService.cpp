#include "app/ReopenService.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusVirtualObject>
#include <utility>

#include "app/SessionBus.h"

namespace tessaspaces {
namespace {

const QString service = QStringLiteral("local.tessaspaces");
const QString path = QStringLiteral("/local/tessaspaces");
const QString interface = QStringLiteral("org.freedesktop.Application");

}  // namespace

class ReopenService::Object final : public QDBusVirtualObject {
 public:
  explicit Object(std::function<void()> reopened) : reopened_(std::move(reopened)) {}

  QString introspect(const QString&) const override {
    return QStringLiteral(
        "<interface name=\"org.freedesktop.Application\"><method name=\"Activate\">"
        "<arg type=\"a{sv}\" name=\"platform_data\" direction=\"in\"/></method></interface>");
  }

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    if (message.member() != u"Activate" || (!message.interface().isEmpty() && message.interface() != interface)) {
      return false;
    }
    reopened_();
    connection.send(message.createReply());
    return true;
  }

 private:
  std::function<void()> reopened_;
};

ReopenService::ReopenService(std::function<void()> reopened) : object_(std::make_shared<Object>(std::move(reopened))) {}
ReopenService::~ReopenService() = default;

void ReopenService::start() {
  SessionBus::connect([weak = std::weak_ptr(object_)](QDBusConnection bus) {
    const auto object = weak.lock();
    if (!object || !bus.registerVirtualObject(path, object.get())) return;
    auto request = QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                  "org.freedesktop.DBus", "RequestName");
    // Without a queue: when another program holds the name, it is not ours to wait for.
    constexpr uint doNotQueue = 4;
    request << service << doNotQueue;
    bus.asyncCall(request);
  });
}

bool ReopenService::notifyRunningCopy() {
  const QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return false;
  auto call = QDBusMessage::createMethodCall(service, path, interface, "Activate");
  call.setAutoStartService(false);
  call << QVariantMap();
  constexpr int patience = 2000;
  return bus.call(call, QDBus::Block, patience).type() == QDBusMessage::ReplyMessage;
}

}  // namespace tessaspaces
