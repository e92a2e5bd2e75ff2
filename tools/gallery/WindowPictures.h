#pragma once

#include <QImage>
#include <QString>

namespace tessaspaces::gallery {

/// Programs whose windows and icons can be drawn.
inline constexpr int applications = 8;
[[nodiscard]] QString applicationName(int application);
/// The title of one of its windows.
[[nodiscard]] QString windowTitle(int application, int number);
/// A window of that size, as a capture would show it.
[[nodiscard]] QImage windowPicture(int application, int number, int width, int height);
[[nodiscard]] QImage applicationIcon(int application, int side);

}  // namespace tessaspaces::gallery
