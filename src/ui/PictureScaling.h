#pragma once

#include <QImage>
#include <QSize>

namespace tessaspaces {

/// The picture in that size, each pixel the mean of all that it stands for, so that text stays as readable as it can.
/// Takes and gives ARGB32_Premultiplied, copies nothing that is not needed and runs on the calling thread alone: it is
/// on the way to the first frame.
[[nodiscard]] QImage scaledPicture(const QImage& picture, QSize size);

}  // namespace tessaspaces
