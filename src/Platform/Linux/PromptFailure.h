#pragma once

#include <string>

namespace orvane {

/// What a run wrote to standard error, for a person to read: what pkexec says when permission was not
/// obtained is put in plain words; everything else, the commands' own words too, stays as it is.
std::string inPlainWords(int terminationStatus, std::string standardError);

}  // namespace orvane
