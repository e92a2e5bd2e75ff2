#pragma once

#include <cstdint>
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

/// Takes the focus from a window that went or is hidden now, and gives it to the front visible one.
void settleFocus(WorldState& state);

}  // namespace tessaspaces::rules
