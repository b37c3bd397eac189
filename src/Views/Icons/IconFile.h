#pragma once

#include <QtGui/QImage>
#include <string_view>

namespace orvane {

/// The image of an icon file (.icns) for a size in pixels: the smallest that is at least as large, scaled
/// down smoothly; else the largest, as it is. Null when the bytes, which may be anything, hold no image that
/// can be read: PNG and the run-length forms can be, JPEG 2000 and palettes cannot. Any thread.
QImage imageFromIconFile(std::string_view bytes, int pixels);

}  // namespace orvane
