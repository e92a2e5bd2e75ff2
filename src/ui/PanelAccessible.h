#pragma once

namespace tessaspaces {

class PanelCanvas;

/// What assistive technology sees of a panel: a list of desktops, each with its windows as buttons, and the place that
/// adds one. Pressing something is a click on it, where nothing covers it. Main thread.
namespace PanelAccessible {

/// Makes panels known; once, or more often.
void install();
/// Another scene is shown: tells where the selection is now, when somebody wants to know.
void changed(PanelCanvas& canvas);

}  // namespace PanelAccessible
}  // namespace tessaspaces
