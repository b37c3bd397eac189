#include "Views/ContentModel.h"

#include <utility>

#include "Platform/Task.h"

namespace orvane {

ContentModel::ContentModel(const ViewServices& services, QObject* parent)
    : QObject(parent), services_(services), sidebar_(services, this) {
    services_.library->addObserver(*this);
    showSelectedApplication();
}

ContentModel::~ContentModel() {
    services_.library->removeObserver(*this);
}

void ContentModel::load() {
    if (!std::exchange(isLoading_, true)) spawn(services_.mainExecutor, load(this, services_.library));
}

Task<void> ContentModel::load(QPointer<ContentModel> content, std::shared_ptr<AppLibrary> library) {
    co_await library->loadCatalog();
    if (content) content->isLoading_ = false;
}

void ContentModel::rescan() {
    services_.start(&AppLibrary::scan);
}

void ContentModel::libraryDidChange(AppLibrary::Field field) {
    if (field == AppLibrary::Field::applications || field == AppLibrary::Field::selectedApplicationID)
        showSelectedApplication();
}

void ContentModel::showSelectedApplication() {
    const InstalledApplication* const application = services_.library->selectedApplication();
    if (application && detail_ && application->id() == detail_->id()) {
        detail_->setApplication(*application);
        return;
    }
    if (!application && !detail_) return;
    // The sheet belongs to the person who reviews it; the pane follows the selection once it has been closed
    // and has slid away.
    if (detail_ && (detail_->isShowingRemovalSheet() || detail_->isSheetInView())) return;
    DetailModel* const former =
        std::exchange(detail_, application ? new DetailModel(*application, services_, this) : nullptr);
    if (detail_) {
        for (const auto changed :
             {&DetailModel::isShowingRemovalSheetChanged, &DetailModel::isSheetInViewChanged})
            connect(detail_, changed, this, &ContentModel::showSelectedApplication);
    }
    emit detailChanged();
    // Views may still look at it until they have taken the pane away.
    if (former) former->deleteLater();
}

}  // namespace orvane
