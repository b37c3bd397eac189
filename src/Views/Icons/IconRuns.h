#pragma once

#include <QtGui/QImage>
#include <string_view>

namespace orvane {

// The run-length forms of an icon file: square images, one channel after the other. Null for bytes that do
// not fill every channel. Any thread.

/// Red, green and blue in runs. The mask has one byte of alpha per pixel; without a whole one the image is
/// opaque.
QImage imageFromRGBRuns(std::string_view runs, std::string_view mask, int side);

/// Alpha, red, green and blue in runs.
QImage imageFromARGBRuns(std::string_view runs, int side);

}  // namespace orvane
