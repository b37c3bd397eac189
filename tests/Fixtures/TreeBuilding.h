#pragma once

#include <string>

namespace orvane::test {

/// Makes folders in each other, `levels` deep, each with the name given, and a file in the deepest; beyond
/// the longest path that the kernel takes too. The first of them is made in `parent`.
void makeDeepTree(const std::string& parent, int levels, const std::string& name = "d");

/// Makes `width` chains of folders, each `depth` deep, with files in every folder; the number of entries
/// made.
int makeWideDeepTree(const std::string& parent, int width, int depth);

/// The highest descriptor that this process has open.
unsigned highestDescriptor();

}  // namespace orvane::test
