#pragma once

#include <QtCore/QObject>
#include <memory>

#include "Views/Desktop/Desktop.h"

namespace orvane {

/// Has the desktop's wishes told, now and whenever they change, for as long as the result is there. Waits for
/// nobody: what takes its time, such as a message bus, is told when it is known. The implementation is the
/// platform's.
std::unique_ptr<QObject> followDesktop(Desktop& desktop);

}  // namespace orvane
