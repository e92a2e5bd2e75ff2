#include <unistd.h>

#include <QApplication>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "app/Alerts.h"
#include "app/AppDelegate.h"
#include "app/Icons.h"
#include "app/Options.h"
#include "app/Overview.h"
#include "app/PlatformChoice.h"
#include "app/QtDispatch.h"
#include "app/ReopenService.h"
#include "app/SessionBus.h"
#include "app/SingleInstanceGuard.h"
#include "app/TerminationSignals.h"
#include "settings/Log.h"
#include "ui/Text.h"

namespace tessaspaces {
namespace {

int fail(const std::string& message) {
  std::fprintf(stderr, "tessaspaces: %s\n", message.c_str());
  return EXIT_FAILURE;
}

/// The name of the copy that runs already, as far as the system knows it.
std::string runningCopyName() {
  for (const char* identifier : {"local.tessaspaces", "local.tessaspaces.dev"}) {
    for (const ApplicationInfo& copy : platform().applications().runningWithBundleIdentifier(identifier)) {
      if (copy.pid == getpid()) continue;
      if (!copy.localizedName.empty()) return copy.localizedName;
      return "tessa⊞spaces";
    }
  }
  return "tessa⊞spaces";
}

/// Opens the overview, says how it is, and ends.
int testGrid() {
  Overview overview;
  int status = EXIT_FAILURE;
  platform().dispatch().async([&] {
    overview.test([&](const GridSelfTestReport& report) {
      std::printf("%s\n", report.text.c_str());
      std::fflush(stdout);
      status = report.failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
      QCoreApplication::exit(status);
    });
  });
  return QApplication::exec();
}

/// The program as it is every day, until it is quit.
int runResident() {
  const TerminationSignals signals([] { QCoreApplication::exit(EXIT_SUCCESS); });
  AppDelegate delegate({.makeGrid = [] { return std::make_unique<Overview>(); }});
  delegate.applicationDidFinishLaunching();
  return QApplication::exec();
}

/// What a process of this program does.
enum class Role { resident, secondCopy, gridTest };

/// Everything that needs the Qt application.
int runWithQt(QApplication& application, const ChosenPlatform& chosen, Role role) {
  QApplication::setQuitOnLastWindowClosed(false);
  auto dispatch = std::make_unique<QtDispatch>();
  QtDispatch& queue = *dispatch;
  std::string error;
  const auto displayLost = [] { QCoreApplication::exit(fail("the connection to the display was lost")); };
  const auto system = openPlatform(chosen, std::move(dispatch), displayLost, error);
  if (!system) return fail(error);
  setPlatform(system.get());

  int status = EXIT_SUCCESS;
  switch (role) {
    case Role::resident: status = runResident(); break;
    case Role::gridTest: status = testGrid(); break;
    case Role::secondCopy:
      ReopenService::notifyRunningCopy();
      Alerts::infoAndWait(localized("app.alreadyRunning.title", runningCopyName()),
                          localized("app.alreadyRunning.body"));
      break;
  }
  SessionBus::abandon();
  queue.close();
  application.closeAllWindows();
  setPlatform(nullptr);
  return status;
}

int run(int argc, char** argv) {
  std::string error;
  const auto options = parseOptions({argv + 1, static_cast<std::size_t>(argc - 1)}, error);
  if (!options) {
    fail(error);
    return 2;
  }
  switch (options->task) {
    case Options::Task::showVersion: std::puts("tessaspaces " TESSASPACES_VERSION); return EXIT_SUCCESS;
    case Options::Task::showHelp: std::fputs(helpText().data(), stdout); return EXIT_SUCCESS;
    case Options::Task::run:
    case Options::Task::testGrid: break;
  }

  Role role = Role::resident;
  if (options->task == Options::Task::testGrid) {
    role = Role::gridTest;
  } else if (!SingleInstanceGuard::acquire()) {
    role = Role::secondCopy;
    std::fputs("tessaspaces: another instance is already running; quit it before starting a new one.\n", stderr);
  }
  auto chosen = choosePlatform(options->platform, error);
  if (!chosen) return role == Role::secondCopy ? EXIT_SUCCESS : fail(error);
  if (role != Role::secondCopy) Log::takeReports();

  SessionBus::prepareEnvironment();
  // Qt's own loop wakes up with less ado than GLib's, and this program needs nothing of GLib.
  setenv("QT_NO_GLIB", "1", 0);
  std::string name = argv[0];
  std::string pluginOption = "-platform";
  std::string plugin = chosen->qtPlugin;
  std::vector<char*> arguments{name.data()};
  if (!plugin.empty()) arguments.insert(arguments.end(), {pluginOption.data(), plugin.data()});
  int count = static_cast<int>(arguments.size());
  arguments.push_back(nullptr);

  QCoreApplication::setApplicationName("tessaspaces");
  QCoreApplication::setApplicationVersion(TESSASPACES_VERSION);
  QGuiApplication::setApplicationDisplayName(QStringLiteral("tessa⊞spaces"));
  QGuiApplication::setDesktopFileName("local.tessaspaces");
  QApplication application(count, arguments.data());
  chosen->probe.reset();
  QApplication::setWindowIcon(Icons::application());
  return runWithQt(application, *chosen, role);
}

}  // namespace
}  // namespace tessaspaces

int main(int argc, char** argv) {
  // Writing to somebody who has gone is an error like others. No SIG_IGN: started programs would inherit it.
  std::signal(SIGPIPE, [](int) {});
  // A launcher may have left it ignored, and then no child tells how it ended.
  std::signal(SIGCHLD, SIG_DFL);
  const int status = tessaspaces::run(argc, argv);
  if (!tessaspaces::SessionBus::abandon()) return status;
  // Qt would wait for the bus that does not answer.
  std::fflush(nullptr);
  _exit(status);
}
