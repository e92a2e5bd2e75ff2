#include <gmock/gmock.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <memory>
#include <optional>

#include "app/EventWait.h"

namespace tessaspaces {
namespace {

using testing::HasSubstr;

const QString notifierWatcher = QStringLiteral("org.kde.StatusNotifierWatcher");

/// What a desktop panel puts on the bus: takes tray icons in.
class FakePanel final : public QDBusVirtualObject {
 public:
  QString introspect(const QString&) const override {
    return "<interface name=\"org.kde.StatusNotifierWatcher\">"
           "<property name=\"IsStatusNotifierHostRegistered\" type=\"b\" access=\"read\"/>"
           "<method name=\"RegisterStatusNotifierItem\"><arg type=\"s\" direction=\"in\"/></method></interface>";
  }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
    if (message.member() == u"Get") {
      bus.send(message.createReply(QVariant::fromValue(QDBusVariant(true))));
    } else if (message.member() == u"RegisterStatusNotifierItem") {
      items << message.service();
      bus.send(message.createReply());
    } else {
      return false;
    }
    return true;
  }
  QStringList items;
};

/// The labels of a menu on the bus, from the item downwards: (id, properties, children).
void collectLabels(const QDBusArgument& item, QStringList& labels) {
  int id = 0;
  QVariantMap properties;
  QVariantList children;
  item.beginStructure();
  item >> id >> properties >> children;
  item.endStructure();
  labels << properties.value("label").toString();
  for (const QVariant& child : children) collectLabels(child.value<QDBusArgument>(), labels);
}

/// The number of the menu item with that label, from `item` downwards; absent when there is none.
std::optional<int> idOfLabel(const QDBusArgument& item, const QString& label) {
  int id = 0;
  QVariantMap properties;
  QVariantList children;
  item.beginStructure();
  item >> id >> properties >> children;
  item.endStructure();
  if (properties.value("label").toString() == label) return id;
  for (const QVariant& child : children) {
    if (const auto found = idOfLabel(child.value<QDBusArgument>(), label)) return found;
  }
  return std::nullopt;
}

/// The program itself in a desktop session of its own: an X server, a message bus, a home.
class SessionTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(folder.isValid());
    environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY"}) environment.remove(name);
    for (const char* name : {"HOME", "XDG_RUNTIME_DIR", "TMPDIR"}) environment.insert(name, folder.path());

    start(bus, "dbus-daemon", {"--session", "--nofork", "--nopidfile", "--print-address=1"});
    const QString address = firstLine(bus);
    start(server, "Xvfb", {"-displayfd", "1", "-screen", "0", "800x600x24", "-nolisten", "tcp", "-noreset"});
    environment.insert("DISPLAY", ":" + firstLine(server));
    environment.insert("DBUS_SESSION_BUS_ADDRESS", address);
    connection = std::make_unique<QDBusConnection>(QDBusConnection::connectToBus(address, "test"));
    ASSERT_TRUE(connection->isConnected());
  }
  void TearDown() override {
    QDBusConnection::disconnectFromBus("test");
    for (QProcess* process : {&program, &second, &server, &bus}) {
      process->terminate();
      if (process->state() != QProcess::NotRunning) process->waitForFinished(10000);
    }
  }

  void start(QProcess& process, const QString& name, const QStringList& arguments) {
    process.setProcessEnvironment(environment);
    process.start(name, arguments);
    ASSERT_TRUE(process.waitForStarted()) << name.toStdString();
  }
  static QString firstLine(QProcess& process) {
    EXPECT_TRUE(waitFor([&] { return process.canReadLine(); }));
    return QString::fromUtf8(process.readLine()).trimmed();
  }
  void configure(const char* json) {
    const QString path = folder.filePath(".config/tessaspaces");
    QDir().mkpath(path);
    QFile file(path + "/config.json");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(json);
  }
  QString log() {
    QFile file(folder.filePath(".config/tessaspaces/tessaspaces.log"));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
  }
  void startProgram(QProcess& process) { start(process, TESSASPACES_PROGRAM, {"--platform", "simulated"}); }
  /// The program is there first, the desktop panel comes later and takes the icon in.
  void startBeforePanel(FakePanel& panel) {
    startProgram(program);
    ASSERT_TRUE(waitFor([&] { return log().contains("MENU BAR: no system tray found"); }));
    ASSERT_TRUE(connection->registerVirtualObject("/StatusNotifierWatcher", &panel));
    ASSERT_TRUE(connection->registerService(notifierWatcher));
    ASSERT_TRUE(waitFor([&] { return !panel.items.isEmpty(); }));
  }
  int idOf(const QString& service, const QString& label) {
    auto layout = QDBusMessage::createMethodCall(service, "/MenuBar", "com.canonical.dbusmenu", "GetLayout");
    layout << 0 << -1 << QStringList("label");
    const auto menu = connection->call(layout).arguments();
    return menu.size() == 2 ? idOfLabel(menu[1].value<QDBusArgument>(), label).value_or(-1) : -1;
  }
  bool isOnBus(const QString& name) {
    auto call = QDBusMessage::createMethodCall("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "NameHasOwner");
    call << name;
    return connection->call(call).arguments().value(0).toBool();
  }

  QTemporaryDir folder;
  QProcessEnvironment environment;
  QProcess bus;
  QProcess server;
  QProcess program;
  QProcess second;
  std::unique_ptr<QDBusConnection> connection;
};

TEST_F(SessionTest, ABusThatDoesNotAnswerDoesNotHoldUpTheEnd) {
  configure(R"({"tessaspaces.logLevel": 3})");
  const int silent = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);  // takes connections and says nothing
  sockaddr_un address{AF_UNIX, ""};
  const std::string path = folder.filePath("silent").toStdString();
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(bind(silent, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(listen(silent, 8), 0);
  environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + QString::fromStdString(path));
  // Under xcb Qt itself asks the bus for a screen reader, on the main thread.
  environment.insert("QT_QPA_PLATFORM", "offscreen");
  startProgram(program);
  pollfd asked{silent, POLLIN, 0};
  ASSERT_EQ(poll(&asked, 1, 10000), 1);
  program.terminate();
  ASSERT_TRUE(program.waitForFinished(10000));
  EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(program.exitCode(), 0);
  close(silent);
}

TEST_F(SessionTest, ASecondCopyHandsOverToTheFirst) {
  configure(R"({"tessaspaces.logLevel": 3, "tessaspaces.hideMenuBarIcon": true})");
  startProgram(program);
  ASSERT_TRUE(waitFor([&] { return isOnBus("local.tessaspaces"); }));
  startProgram(second);
  EXPECT_TRUE(waitFor([&] { return log().contains("MENU BAR: icon restored by relaunching the app"); }));
  EXPECT_EQ(second.readAllStandardError().toStdString(),
            "tessaspaces: another instance is already running; quit it before starting a new one.\n");
  EXPECT_EQ(second.state(), QProcess::Running) << "its alert is open";
  EXPECT_EQ(log().count("=== tessa⊞spaces start ==="), 1);

  program.terminate();
  ASSERT_TRUE(program.waitForFinished(10000));
  EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(program.exitCode(), 0);
}

#ifdef TESSASPACES_HAS_X11
TEST_F(SessionTest, TheIconGoesToAPanelThatComesLater) {
  configure(R"({"tessaspaces.logLevel": 3})");
  FakePanel panel;
  ASSERT_NO_FATAL_FAILURE(startBeforePanel(panel));

  auto layout = QDBusMessage::createMethodCall(panel.items.first(), "/MenuBar", "com.canonical.dbusmenu", "GetLayout");
  layout << 0 << -1 << QStringList("label");
  const auto menu = connection->call(layout).arguments();
  ASSERT_EQ(menu.size(), 2);
  QStringList labels;
  collectLabels(menu[1].value<QDBusArgument>(), labels);
  EXPECT_TRUE(labels.contains("Quit tessa⊞spaces")) << labels.join("|").toStdString();
}

TEST_F(SessionTest, AScreenThatIsLockedHasNoOverviewOpen) {
  configure(R"({"tessaspaces.logLevel": 3})");
  FakePanel panel;
  ASSERT_NO_FATAL_FAILURE(startBeforePanel(panel));
  auto click = QDBusMessage::createMethodCall(panel.items.first(), "/MenuBar", "com.canonical.dbusmenu", "Event");
  click << idOf(panel.items.first(), "Show Grid") << QString("clicked") << QVariant::fromValue(QDBusVariant(0)) << 0U;
  connection->call(click);
  ASSERT_TRUE(waitFor([&] { return log().contains("GRID shown on "); }));
  const auto say = [&](bool active) {
    auto signal =
        QDBusMessage::createSignal("/org/freedesktop/ScreenSaver", "org.freedesktop.ScreenSaver", "ActiveChanged");
    signal << active;
    connection->send(signal);
  };
  say(false);
  // It may not listen yet: a screen saver says it once, the test until it is heard.
  EXPECT_TRUE(waitFor([&] {
    say(true);
    return log().contains("GRID: the screen is locked — open grids closed");
  }));
}

TEST_F(SessionTest, EndsWithAMessageWhenThereIsNoDisplayAnyMore) {
  configure("{}");
  start(program, TESSASPACES_PROGRAM, {});
  ASSERT_TRUE(waitFor([&] { return isOnBus("local.tessaspaces"); }));
  server.terminate();
  ASSERT_TRUE(program.waitForFinished(10000));
  start(second, TESSASPACES_PROGRAM, {});
  ASSERT_TRUE(second.waitForFinished(10000));
  for (QProcess* process : {&program, &second}) {
    EXPECT_EQ(process->exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process->exitCode(), 1);
  }
  EXPECT_THAT(second.readAllStandardError().toStdString(), HasSubstr("does not answer. Start the program from"));
}
#endif

}  // namespace
}  // namespace tessaspaces
