#include "App/Support/Program.h"

#include <QtCore/QFile>
#include <string_view>
#include <utility>

namespace orvane::app {
namespace {

constexpr std::size_t iconThreads = 2;

/// The program's own information, as it was built.
Bundle programBundle() {
    QFile file(QStringLiteral(":/Info.plist"));
    QByteArray bytes;
    if (file.open(QIODevice::ReadOnly)) bytes = file.readAll();
    const std::string_view text(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    return Bundle(FileURL(), PropertyList::parse(text), std::nullopt);
}

}  // namespace

Program::Program(Machine machine)
    : machine_(std::move(machine)),
      iconPool_(iconThreads),
      scanner_(pool_.get_executor(), *machine_.fileManager, *machine_.bundleLoader, *machine_.localizedText),
      catalog_(pool_.get_executor(), *machine_.fileManager, *machine_.localizedText),
      library_(
          AppLibrary::make(main_.executor(), scanner_, catalog_, *machine_.localizedText, *machine_.clock)),
      services_(services()),
      content_(services_),
      about_(programBundle(), main_.executor(), *machine_.clock) {}

Program::~Program() {
    pool_.join();
}

ViewServices Program::services() {
    const auto makePlanner = [this] {
        return std::make_shared<RemovalPlanner>(pool_.get_executor(), *machine_.fileManager,
                                                *machine_.workspace, *machine_.localizedText);
    };
    const auto makeRemovalService = [this] {
        return std::make_shared<AppRemovalService>(pool_.get_executor(), *machine_.fileManager,
                                                   *machine_.workspace, *machine_.scriptRunner);
    };
    return {main_.executor(), pool_.get_executor(), library_,
            makePlanner,      makeRemovalService,   *machine_.workspace};
}

std::unique_ptr<IconProvider> Program::makeIconProvider() {
    return std::make_unique<IconProvider>(iconPool_.get_executor(), *machine_.bundleLoader,
                                          *machine_.fileManager);
}

}  // namespace orvane::app
