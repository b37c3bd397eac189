#pragma once

#include <string>

#include "Models/RemovalMode.h"
#include "Models/RemovalResult.h"

namespace orvane {

/// What a person is told of a finished removal: how many items went where, and how many could not be removed.
std::string removalMessage(const RemovalResult& result, RemovalMode mode);

}  // namespace orvane
