#pragma once

#include <QtCore/QString>
#include <string>

#include "Platform/MacDisks.h"

namespace orvane {

/// What a person should know of a disk and the home that was opened on it before anything is removed; empty
/// for nothing.
QString diskNotice(const MacDisk& disk, const std::string& home);

}  // namespace orvane
