#include "Platform/Linux/MountTable.h"

#include <algorithm>
#include <fstream>
#include <string_view>

namespace orvane {

namespace {

std::string_view nextField(std::string_view& line) {
    const auto field = line.substr(0, line.find(' '));
    line.remove_prefix(std::min(field.size() + 1, line.size()));
    return field;
}

/// The kernel writes blanks, line breaks and backslashes as octal numbers.
std::string unescaped(std::string_view field) {
    std::string text;
    for (std::size_t i = 0; i < field.size(); ++i) {
        const bool isEscaped = field[i] == '\\' && i + 3 < field.size();
        text +=
            isEscaped
                ? static_cast<char>((field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 + field[i + 3] - '0')
                : field[i];
        if (isEscaped) i += 3;
    }
    return text;
}

/// `36 35 98:0 /root /place rw,noatime shared:1 - kind source rw`: the place is the fifth field, and the kind
/// the first after a lone hyphen, before which there may be any number.
Mount parsed(std::string_view line) {
    for (int field = 1; field < 5; ++field) nextField(line);
    Mount mount;
    mount.place = unescaped(nextField(line));
    while (!line.empty() && nextField(line) != "-") continue;
    mount.kind = unescaped(nextField(line));
    return mount;
}

}  // namespace

Result<std::vector<Mount>> mountTable() {
    std::ifstream table("/proc/self/mountinfo");
    std::vector<Mount> mounts;
    for (std::string line; std::getline(table, line);) mounts.push_back(parsed(line));
    if (!table.eof()) return failure(std::errc::io_error);
    return mounts;
}

}  // namespace orvane
