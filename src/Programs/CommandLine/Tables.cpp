#include "Programs/CommandLine/Tables.h"

#include <algorithm>
#include <array>

#include "Models/FileSizeFormatter.h"
#include "Programs/CommandLine/Console.h"
#include "Services/DiskSize.h"

namespace orvane::commandline {
namespace {

constexpr std::size_t widestColumn = 40;

std::string sizeText(std::int64_t bytes) {
    return bytes < 1 ? "—" : FileSizeFormatter::shared().string(bytes);
}

/// Rows of cells, aligned; the last cell of a row is not padded.
template <std::size_t Columns>
std::string aligned(const std::vector<std::array<std::string, Columns>>& rows) {
    std::array<std::size_t, Columns - 1> widths{};
    std::vector<std::array<std::size_t, Columns - 1>> used(rows.size());
    for (std::size_t row = 0; row < rows.size(); ++row) {
        for (std::size_t column = 0; column < widths.size(); ++column) {
            used[row][column] = columnWidth(rows[row][column]);
            widths[column] = std::max(widths[column], std::min(used[row][column], widestColumn));
        }
    }
    std::string text;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        for (std::size_t column = 0; column < widths.size(); ++column) {
            text += rows[row][column];
            text.append(std::max(widths[column], used[row][column]) - used[row][column], ' ');
            text += "  ";
        }
        text += rows[row].back();
        text += '\n';
    }
    return text;
}

std::string captionOf(const InstalledApplication& application) {
    if (!application.isInstalled) return "Not installed";
    return "Version " + printable(application.version) + " • " + sizeText(application.size);
}

std::string serviceLines(const std::vector<RunningService>& services) {
    std::string text;
    for (const auto& service : services) {
        text += printable(service.name) + "  Running process • PID " +
                std::to_string(service.processIdentifier) + "  " + printable(service.executablePath) + "\n";
    }
    return text;
}

}  // namespace

std::string listTable(std::span<const InstalledApplication* const> applications) {
    std::vector<std::array<std::string, 3>> rows;
    rows.reserve(applications.size());
    for (const auto* application : applications) {
        rows.push_back({printable(application->name), captionOf(*application), printable(application->id())});
    }
    return aligned(rows) + std::to_string(applications.size()) + " applications\n";
}

std::string itemTable(const std::vector<RelatedItem>& items, const std::vector<std::string>& reasons) {
    std::vector<std::array<std::string, 3>> rows;
    rows.reserve(items.size());
    for (std::size_t index = 0; index < items.size(); ++index) {
        const auto& item = items[index];
        auto path = printable(item.id());
        if (item.detail) path += " (" + printable(*item.detail) + ")";
        if (item.requiresAdministrator) path += "  Permission required";
        if (index < reasons.size() && !reasons[index].empty()) path += "\n    " + printable(reasons[index]);
        rows.push_back({std::string(rawValue(item.kind)), sizeText(item.size), std::move(path)});
    }
    return aligned(rows);
}

std::string planTable(const RemovalPlan& plan, const std::vector<std::string>& reasons) {
    std::string text = printable(plan.application.name) + "  " + captionOf(plan.application) + "\n";
    text += itemTable(plan.items, reasons);
    text += serviceLines(plan.runningServices);
    text += std::to_string(plan.items.size()) + " related items • " + sizeText(totalSize(plan.items)) +
            " • " + std::to_string(plan.runningServices.size()) + " active services\n";
    return text;
}

std::string disksTable(const std::vector<MacDisk>& disks) {
    std::vector<std::array<std::string, 3>> rows;
    for (const auto& disk : disks) {
        auto about = sizeText(disk.capacity) + " • " + sizeText(disk.available) + " free";
        if (disk.isReadOnly) about += " • Read-only";
        std::string homes;
        for (const auto& home : disk.homes) {
            if (!homes.empty()) homes += ", ";
            homes += printable(home.path);
            if (!home.isOwn) homes += " (not yours)";
        }
        rows.push_back(
            {printable(disk.root), std::move(about), homes.empty() ? "No homes" : std::move(homes)});
    }
    return aligned(rows) + std::to_string(disks.size()) + " disks\n";
}

}  // namespace orvane::commandline
