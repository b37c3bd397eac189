#pragma once

namespace orvane {

/// How items are removed: into the Trash of the user, or for good.
enum class RemovalMode { trash, permanent };

}  // namespace orvane
