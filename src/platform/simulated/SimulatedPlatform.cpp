#include "platform/simulated/SimulatedPlatform.h"

#include <array>
#include <map>

#include "base/Fatal.h"
#include "base/Report.h"
#include "platform/simulated/SimulatedAccessibility.h"
#include "platform/simulated/SimulatedDesktop.h"
#include "platform/simulated/SimulatedHotKeys.h"
#include "platform/simulated/SimulatedInputEvents.h"
#include "platform/simulated/SimulatedSession.h"
#include "platform/simulated/SimulatedWindowServer.h"
#include "platform/simulated/WorldText.h"

namespace tessaspaces {

namespace {

/// Outside events happen at their virtual time whoever sleeps; a real loop has them on its main queue.
SimulatedWorld::Later laterOn(Dispatch& dispatch, VirtualDispatch* virtualTime) {
  if (virtualTime) {
    return [virtualTime](Duration delay, std::function<void()> happening) {
      virtualTime->outside(delay, std::move(happening));
    };
  }
  return [&dispatch](Duration delay, std::function<void()> happening) { dispatch.after(delay, std::move(happening)); };
}

}  // namespace

struct SimulatedPlatform::Parts {
  Parts(std::unique_ptr<Dispatch> given, VirtualDispatch* clock)
      : dispatch(std::move(given)), virtualTime(clock), world(*dispatch, laterOn(*dispatch, clock)) {
    world.setObserver([this](WorldEvent event) {
      capture.notice();
      switch (event) {
        case WorldEvent::spaces: windowServer.spacesChanged.emit(); break;
        case WorldEvent::windows: windowServer.windowsChanged.emit(); break;
        case WorldEvent::windowManager: windowServer.windowManagerChanged.emit(); break;
        case WorldEvent::screens: screens.changed.emit(); break;
      }
    });
  }

  static std::unique_ptr<Parts> make(std::unique_ptr<Dispatch> given) {
    if (!given) given = std::make_unique<VirtualDispatch>();
    auto* clock = dynamic_cast<VirtualDispatch*>(given.get());
    return std::make_unique<Parts>(std::move(given), clock);
  }

  std::unique_ptr<Dispatch> dispatch;
  VirtualDispatch* virtualTime;
  SimulatedWorld world;
  SimulatedWindowServer windowServer{world};
  SimulatedWindowList windowList{world};
  SimulatedScreens screens{world};
  SimulatedApplications applications{world};
  SimulatedPermissions permissions{world};
  SimulatedAccessibility accessibility{world, permissions};
  SimulatedCapture capture{world, *dispatch};
  SimulatedPreferences preferences;
  SimulatedInputEvents inputEvents{world, preferences};
  SimulatedHotKeys hotKeys{world};
  SimulatedLoginItem loginItem{world};

  std::mutex lock;  // guards the two below
  OperatingSystemVersion version{27, 0};
  std::map<SessionFact, SessionFinding> findings;
};

SimulatedPlatform::SimulatedPlatform(std::unique_ptr<Dispatch> dispatch) : parts_(Parts::make(std::move(dispatch))) {}

SimulatedPlatform::~SimulatedPlatform() = default;

std::unique_ptr<SimulatedPlatform> SimulatedPlatform::fromText(std::string_view text, std::string* error,
                                                               std::unique_ptr<Dispatch> dispatch) {
  std::string reason;
  auto description = parseWorld(text, &reason);
  if (!description) {
    if (error) {
      *error = reason;
    } else {
      report(ReportLevel::error, "not a simulated world: " + reason);
    }
    return nullptr;
  }
  auto platform = std::make_unique<SimulatedPlatform>(std::move(dispatch));
  auto& world = platform->world();
  for (auto& display : description->displays) world.addDisplay(std::move(display));
  for (auto& application : description->applications) world.addApplication(std::move(application));
  auto& windows = description->windows;
  for (auto window = windows.rbegin(); window != windows.rend(); ++window) world.addWindow(std::move(*window));
  return platform;
}

WindowServer& SimulatedPlatform::windowServer() {
  return parts_->windowServer;
}
WindowList& SimulatedPlatform::windowList() {
  return parts_->windowList;
}
Screens& SimulatedPlatform::screens() {
  return parts_->screens;
}
Applications& SimulatedPlatform::applications() {
  return parts_->applications;
}
AccessibilityWindows& SimulatedPlatform::accessibility() {
  return parts_->accessibility;
}
InputEvents& SimulatedPlatform::inputEvents() {
  return parts_->inputEvents;
}
HotKeyRegistrar& SimulatedPlatform::hotKeys() {
  return parts_->hotKeys;
}
WindowCapture& SimulatedPlatform::windowCapture() {
  return parts_->capture;
}
SimulatedCapture& SimulatedPlatform::pictures() {
  return parts_->capture;
}
Preferences& SimulatedPlatform::preferences() {
  return parts_->preferences;
}
LoginItem& SimulatedPlatform::loginItem() {
  return parts_->loginItem;
}
Permissions& SimulatedPlatform::permissions() {
  return parts_->permissions;
}
Dispatch& SimulatedPlatform::dispatch() {
  return *parts_->dispatch;
}

OperatingSystemVersion SimulatedPlatform::operatingSystemVersion() const {
  const std::lock_guard guard(parts_->lock);
  return parts_->version;
}

std::vector<SessionFinding> SimulatedPlatform::examineSession() {
  constexpr std::array facts{SessionFact::windowManager, SessionFact::nativeSession, SessionFact::inputSynthesis,
                             SessionFact::windowPictures};
  const auto windowManager = parts_->world.state()->windowManager;
  std::vector<SessionFinding> findings;
  const std::lock_guard guard(parts_->lock);
  for (const auto fact : facts) {
    const auto given = parts_->findings.find(fact);
    if (given != parts_->findings.end()) {
      findings.push_back(given->second);
    } else if (fact == SessionFact::windowManager) {
      findings.push_back({fact, windowManager.has_value(), windowManager.value_or("")});
    } else {
      findings.push_back({fact, true, "simulated"});
    }
  }
  return findings;
}

SimulatedWorld& SimulatedPlatform::world() {
  return parts_->world;
}

VirtualDispatch& SimulatedPlatform::time() {
  if (!parts_->virtualTime) fatal("this simulated platform does not run in virtual time");
  return *parts_->virtualTime;
}

bool SimulatedPlatform::pressKey(KeyCombo combo) {
  return parts_->hotKeys.press(combo);
}

void SimulatedPlatform::takeKey(KeyCombo combo, std::int32_t status) {
  parts_->hotKeys.take(combo, status);
}

void SimulatedPlatform::releaseKey(KeyCombo combo) {
  parts_->hotKeys.release(combo);
}

void SimulatedPlatform::setOperatingSystemVersion(OperatingSystemVersion version) {
  const std::lock_guard guard(parts_->lock);
  parts_->version = version;
}

void SimulatedPlatform::setLegacyPreference(std::string key, PreferenceValue value) {
  parts_->preferences.setLegacyValue(std::move(key), std::move(value));
}

void SimulatedPlatform::setPreferredLanguages(std::vector<std::string> tags) {
  parts_->preferences.setPreferredLanguages(std::move(tags));
}
void SimulatedPlatform::setNaturalScrolling(bool natural) {
  parts_->preferences.setNaturalScrolling(natural);
}
void SimulatedPlatform::setReduceMotion(bool reduce) {
  parts_->preferences.setReduceMotion(reduce);
}

void SimulatedPlatform::setPermissions(bool accessibility, bool screenRecording) {
  parts_->permissions.set(accessibility, screenRecording);
}

void SimulatedPlatform::setFinding(SessionFinding finding) {
  const std::lock_guard guard(parts_->lock);
  parts_->findings[finding.fact] = std::move(finding);
}

}  // namespace tessaspaces
