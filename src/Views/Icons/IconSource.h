#pragma once

#include <QtCore/QString>
#include <optional>
#include <string>

#include "Models/InstalledApplication.h"

namespace orvane {

/// The URL under which views ask for an application's icon. It changes when the bundle does, so that views do
/// not keep the icon of the former version. An application that is not installed has the generic one.
QString iconSource(const InstalledApplication& application);

/// The path of the bundle, from what such a URL holds after "image://icons/". Absent for the generic icon.
std::optional<std::string> bundlePathOfIcon(const QString& id);

}  // namespace orvane
