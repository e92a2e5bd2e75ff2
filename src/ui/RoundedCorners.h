#pragma once

#include <QColor>
#include <QImage>
#include <QRect>
#include <optional>

/// Rounded corners as part of a picture, so that drawing it costs no clipping. Pictures are ARGB32_Premultiplied; a
/// radius is in pixels, and no more than half of the shorter side counts. Only pixels `within` are changed; by default
/// all of them.
namespace tessaspaces::RoundedCorners {

/// Makes what lies outside transparent.
void cut(QImage& image, int radius, const std::optional<QRect>& within = std::nullopt);
/// Draws a line of that width along the inside of the edge.
void outline(QImage& image, int radius, int width, const QColor& color,
             const std::optional<QRect>& within = std::nullopt);

}  // namespace tessaspaces::RoundedCorners
