#include "Programs/Window/WindowProgram.h"

#include <QtCore/QFile>
#include <string_view>
#include <utility>

namespace orvane::window {
namespace {

constexpr std::size_t iconThreads = 2;

/// The program's own information, as it was built.
Bundle programBundle() {
    QFile file(QStringLiteral(":/Info.plist"));
    QByteArray bytes;
    if (file.open(QIODevice::ReadOnly)) bytes = file.readAll();
    const std::string_view text(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    return Bundle::fromInformation(text);
}

}  // namespace

WindowProgram::WindowProgram(Machine machine)
    : graph_(std::move(machine)),
      iconPool_(iconThreads),
      services_{graph_.mainExecutor(),
                graph_.pool(),
                graph_.library(),
                [this] { return graph_.makePlanner(); },
                [this] { return graph_.makeRemovalService(); },
                *graph_.machine().workspace},
      content_(services_),
      about_(programBundle(), graph_.mainExecutor(), *graph_.machine().clock) {}

std::unique_ptr<IconProvider> WindowProgram::makeIconProvider() {
    return std::make_unique<IconProvider>(iconPool_.get_executor(), *graph_.machine().bundleLoader,
                                          *graph_.machine().fileManager);
}

}  // namespace orvane::window
