#include "Platform/Posix/PackageName.h"

#include <algorithm>
#include <array>

#include "Models/FileURL.h"

namespace orvane {

namespace {

constexpr auto packageExtensions = std::to_array<std::string_view>({
    "app",      "appex",    "bundle",      "plugin",     "kext", "dext",    "xpc",
    "prefpane", "saver",    "qlgenerator", "mdimporter", "wdgt", "service", "systemextension",
    "action",   "workflow", "component",   "rtfd",       "pkg",  "mpkg",
});

constexpr char lowercase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

bool isPackageName(std::string_view name) {
    const auto extension = pathExtension(name);
    return std::any_of(packageExtensions.begin(), packageExtensions.end(), [&](std::string_view known) {
        return std::equal(known.begin(), known.end(), extension.begin(), extension.end(),
                          [](char a, char b) { return a == lowercase(b); });
    });
}

}  // namespace orvane
