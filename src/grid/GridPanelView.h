#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Geometry.h"
#include "base/KeyCombo.h"
#include "grid/GridScene.h"
#include "platform/Dispatch.h"
#include "platform/Screens.h"

namespace tessaspaces {

enum class GridButton { left, middle, right };

/// Keys that mean something in the overview besides what they write.
enum class GridKey {
  left,
  right,
  up,
  down,
  home,
  end,
  enter,
  escape,
  tab,
  backTab,
  backspace,
  remove,
  insert,
  rename,  // F2
  menu,    // the menu key, shift + F10
};

struct GridMenuItem {
  /// Empty: a separator.
  std::string title;
  bool enabled = true;
  bool checked = false;
  /// What choosing it does; main thread.
  std::function<void()> action;
};

/// What a panel's window tells of the user. Points are in the panel's coordinates (see GridScene) and may lie outside
/// it while a button is held. Main thread.
class GridPanelInput {
 public:
  virtual ~GridPanelInput() = default;
  virtual void pointerMoved(Point at) = 0;
  /// It is over no panel of this display any more.
  virtual void pointerLeft() = 0;
  virtual void pressed(GridButton button, Point at) = 0;
  virtual void released(GridButton button, Point at) = 0;
  /// Auto-repeats of a key that was down before the panel opened do not arrive.
  virtual void key(GridKey key) = 0;
  /// Text that was typed, one or more whole characters, control characters left out.
  virtual void typed(const std::string& text) = 0;
  /// A combination with modifiers that writes nothing, in the product's own key codes: one of the program's hot keys
  /// perhaps, which the system does not deliver while the panel has the keyboard. `repeated`: the key is held. True:
  /// it was one.
  virtual bool hotKey(KeyCombo combo, bool repeated) = 0;
  /// Another window lies over the panel, or the system took the keyboard or the pointer away for good.
  virtual void covered() = 0;
};

/// The window of one panel of the overview: fills a screen over everything else, draws a scene and tells of the user's
/// doings. Made hidden; kept hidden between openings. Knows nothing of desktops. Main thread.
class GridPanelView {
 public:
  /// A zoom between the whole panel and one of its rectangles.
  struct Zoom {
    enum class Direction {
      in,   // the rectangle grows until it fills the panel
      out,  // the panel starts filled by the rectangle and draws back to the whole
    };
    Direction direction = Direction::in;
    Rect rect;
    Duration duration{};
  };

  virtual ~GridPanelView() = default;

  /// Covers the screen and shows the scene at once, complete. With a zoom its first frame is the zoom's first.
  /// `finished` (may be empty) is called once after the zoom, at once without one, and not at all when the panel is
  /// closed or another zoom begins before.
  virtual void open(const ScreenRef& screen, const GridScene& scene, const std::optional<Zoom>& zoom,
                    std::function<void()> finished) = 0;
  /// Hides it, with menu, name editor and message, and gives keyboard and pointer back. Nothing when it is hidden.
  virtual void close() = 0;
  [[nodiscard]] virtual bool isOpen() const = 0;
  /// Everything typed and clicked comes to this process's panels alone from now on. False when another program holds
  /// the keyboard or the pointer: the panel then has to do with the pointer over it, and with no keys.
  virtual bool takeKeyboard() = 0;
  virtual void giveKeyboardBack() = 0;

  /// Draws another scene; what has not changed is not drawn again. Nothing while it is hidden.
  virtual void show(const GridScene& scene) = 0;
  /// Zooms an open panel; `finished` as for `open`.
  virtual void animate(const Zoom& zoom, std::function<void()> finished) = 0;
  /// A window that was let go floats from one rectangle to another and is gone.
  virtual void flyBack(const GridScene::Window& window, const Rect& from, const Rect& to) = 0;

  /// Lets the user edit a name in a field over that rectangle. `done` is called once: with the text, or with nothing
  /// when the user changed his mind or the panel closed. Input goes to the field until then.
  virtual void editName(const Rect& tile, const std::string& name,
                        std::function<void(std::optional<std::string>)> done) = 0;
  /// A menu at that point; input goes to it until it is closed.
  virtual void openMenu(Point at, std::vector<GridMenuItem> items) = 0;
  /// A message over the panel that goes with the next key or click, or after some seconds.
  virtual void alert(const std::string& title, const std::string& text) = 0;
  /// Device pixels per point of the screen that `open` was last given; 1 before.
  [[nodiscard]] virtual double scale() const = 0;
};

/// Makes the window of a panel. `input` outlives it.
using MakeGridPanelView = std::function<std::unique_ptr<GridPanelView>(GridPanelInput& input)>;

}  // namespace tessaspaces
