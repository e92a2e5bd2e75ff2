#pragma once

#include <optional>
#include <string>

#include "base/KeyCombo.h"
#include "grid/GridPanelView.h"

class QKeyEvent;

namespace tessaspaces {

/// What a key that Qt reports means here.
namespace KeyMapping {

/// Absent when it means nothing but what it writes. Whatever modifiers are held, except that they make another key of
/// it: Shift + Tab, Shift + F10.
[[nodiscard]] std::optional<GridKey> gridKey(const QKeyEvent& event);

/// What it writes, in UTF-8, without control characters; empty when that is nothing.
[[nodiscard]] std::string written(const QKeyEvent& event);

/// The key by its legend, with the modifiers that Qt names; for where nothing better is known.
[[nodiscard]] KeyCombo combo(const QKeyEvent& event);

}  // namespace KeyMapping
}  // namespace tessaspaces
