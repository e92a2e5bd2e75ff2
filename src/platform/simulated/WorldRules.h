#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "platform/simulated/SimulatedWorld.h"
#include "platform/simulated/WorldState.h"

/// How the simulated window server behaves: each function carries a state from before a request to after
/// it. What a state does not contain (a window or space that is gone) is left alone, as window servers do.
namespace tessaspaces::rules {

void addDisplay(WorldState& state, DisplaySetup setup);
void removeDisplay(WorldState& state, std::string_view name);

SpaceID addSpace(WorldState& state, SimulatedDisplay& display, SpaceSetup setup);
void removeSpace(WorldState& state, SpaceID space);

/// The space's display shows it, and its front window takes the focus.
void show(WorldState& state, SpaceID space);

WindowID addWindow(WorldState& state, WindowSetup setup);
void removeWindow(WorldState& state, WindowID window);
/// On that one space alone, sticky no more.
void place(WorldState& state, std::span<const WindowID> windows, SpaceID space);
void addToSpaces(WorldState& state, std::span<const WindowID> windows, std::span<const SpaceID> spaces);
/// A window's last space is not taken from it.
void removeFromSpaces(WorldState& state, std::span<const WindowID> windows, std::span<const SpaceID> spaces);
/// Shows its space, brings it to the front and gives it the focus.
void focus(WorldState& state, WindowID window);
/// Focuses the application's front window; without windows it is just frontmost.
void activate(WorldState& state, std::int32_t pid);

/// The strip at a window's top by which it is dragged: 22 points, ordinary windows (layer 0) only.
std::optional<Rect> titleBar(const SimulatedWindow& window);
/// The foremost visible window there, `point` from the top left; null when there is none.
const SimulatedWindow* windowAt(const WorldState& state, Point point);
/// Moves and sizes it; its space stays.
void setBounds(WorldState& state, WindowID window, const Rect& bounds);

// The mouse. Points from the top left of the first display; the pointer stays on the displays.
Point pointerFromTop(const WorldState& state);
/// Also drags along what was pressed, once the pointer is some points from there.
void movePointer(WorldState& state, Point to);
/// On a title bar also starts a drag.
void press(WorldState& state);
void release(WorldState& state);

/// Takes the focus from a window that went or is hidden now, and gives it to the front visible one.
void settleFocus(WorldState& state);

}  // namespace tessaspaces::rules
