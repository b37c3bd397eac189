#pragma once

#include <QtCore/QByteArray>
#include <QtGui/QImage>

#include "Text/FunctionRef.h"

namespace orvane {

/// An icon file as the Mac has them (.icns), in every size that it asks for. `drawn` gives the picture so
/// many pixels wide and high. Empty where an image cannot be written.
QByteArray macIconFile(FunctionRef<QImage(int pixels)> drawn);

}  // namespace orvane
