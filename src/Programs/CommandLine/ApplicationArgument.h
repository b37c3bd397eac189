#pragma once

#include <string>
#include <string_view>
#include <tl/expected.hpp>
#include <vector>

#include "Models/InstalledApplication.h"
#include "Programs/CommandLine/CommandLineProgram.h"

namespace orvane::commandline {

/// Whether a text of the command line names the file: its path, byte by byte, or its URL.
bool names(std::string_view text, const FileURL& url);

/// The application that a text of the command line means: by path or URL, else by a name that only one has
/// (whatever its case, if no name is exactly that). Looks in the saved list, and where it is not there, on
/// the disk; saves nothing. The error is one line for a person.
Task<tl::expected<InstalledApplication, std::string>> findApplication(CommandLineProgram& program,
                                                                      std::string text);

/// A word for each application by which `findApplication` finds it and no other: its name, or its path where
/// the name is not its own or could be read as something else. An application that neither can name has none.
std::vector<std::string> applicationWords(const std::vector<InstalledApplication>& applications);

}  // namespace orvane::commandline
