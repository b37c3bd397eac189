#include <unistd.h>

#include <algorithm>
#include <iostream>

#include "Programs/Elevation/Elevation.h"

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    const auto user = ::geteuid();
    if (user != 0) orvane::leaveSurroundingsBehind();
    return orvane::elevate(arguments, orvane::RootShell::reachedBy(user), std::cout, std::cerr);
}
