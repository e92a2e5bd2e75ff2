#include "platform/simulated/SimulatedOperation.h"

namespace tessaspaces {

std::string_view operationName(Operation operation) {
  switch (operation) {
    case Operation::mainConnectionID: return "mainConnectionID";
    case Operation::copyManagedDisplaySpaces: return "copyManagedDisplaySpaces";
    case Operation::managedDisplayGetCurrentSpace: return "managedDisplayGetCurrentSpace";
    case Operation::managedDisplaySetCurrentSpace: return "managedDisplaySetCurrentSpace";
    case Operation::copyWindowsOnSpace: return "copyWindowsOnSpace";
    case Operation::copySpacesForWindows: return "copySpacesForWindows";
    case Operation::moveWindowsToManagedSpace: return "moveWindowsToManagedSpace";
    case Operation::addWindowsToSpaces: return "addWindowsToSpaces";
    case Operation::removeWindowsFromSpaces: return "removeWindowsFromSpaces";
    case Operation::spaceSetCompatID: return "spaceSetCompatID";
    case Operation::setWindowListWorkspace: return "setWindowListWorkspace";
    case Operation::bridgedShowSpaces: return "bridgedShowSpaces";
    case Operation::bridgedSetCurrentSpace: return "bridgedSetCurrentSpace";
    case Operation::bridgedHideSpaces: return "bridgedHideSpaces";
    case Operation::bridgedMoveWindows: return "bridgedMoveWindows";
    case Operation::addSpace: return "addSpace";
    case Operation::removeSpace: return "removeSpace";
    case Operation::beginRead: return "beginRead";
    case Operation::windowManagerName: return "windowManagerName";
    case Operation::carriesHeldWindows: return "carriesHeldWindows";
    case Operation::setDesktopLayout: return "setDesktopLayout";
    case Operation::copyWindowInfo: return "copyWindowInfo";
    case Operation::screens: return "screens";
    case Operation::frontmost: return "frontmost";
    case Operation::running: return "running";
    case Operation::runningWithBundleIdentifier: return "runningWithBundleIdentifier";
    case Operation::icon: return "icon";
    case Operation::activate: return "activate";
    case Operation::registerHotKey: return "registerHotKey";
    case Operation::unregisterHotKey: return "unregisterHotKey";
    case Operation::createEvent: return "createEvent";
    case Operation::recreateEvent: return "recreateEvent";
    case Operation::postEvent: return "postEvent";
    case Operation::swipe: return "swipe";
    case Operation::setLoginItem: return "setLoginItem";
    case Operation::requestPermission: return "requestPermission";
    case Operation::findWindow: return "findWindow";
    case Operation::windowFrame: return "windowFrame";
    case Operation::windowTitle: return "windowTitle";
    case Operation::windowTitleBar: return "windowTitleBar";
    case Operation::windowIsAt: return "windowIsAt";
    case Operation::raiseWindow: return "raiseWindow";
    case Operation::placeWindow: return "placeWindow";
    case Operation::closeWindow: return "closeWindow";
    case Operation::mouseLocation: return "mouseLocation";
    case Operation::heldInput: return "heldInput";
    case Operation::moveMouse: return "moveMouse";
    case Operation::pressMouse: return "pressMouse";
    case Operation::releaseMouse: return "releaseMouse";
    case Operation::beginCapture: return "beginCapture";
    case Operation::previews: return "previews";
    case Operation::wallpaper: return "wallpaper";
    case Operation::screenContent: return "screenContent";
  }
  return "?";
}

void SimulatedFaults::refuseBridged() {
  unavailable.insert({Operation::bridgedShowSpaces, Operation::bridgedSetCurrentSpace, Operation::bridgedHideSpaces,
                      Operation::bridgedMoveWindows});
}

void SimulatedFaults::ignoreMoveMethods(int count) {
  if (count >= 1) ignored.insert(Operation::bridgedMoveWindows);
  if (count >= 2) ignored.insert(Operation::moveWindowsToManagedSpace);
  if (count >= 3) ignored.insert(Operation::setWindowListWorkspace);
  if (count >= 4) ignored.insert({Operation::addWindowsToSpaces, Operation::removeWindowsFromSpaces});
}

}  // namespace tessaspaces
