#include "Views/ReviewModel.h"

#include <utility>

#include "Platform/Task.h"
#include "Views/DisplayText.h"
#include "Views/Icons/IconSource.h"

namespace orvane {
namespace {

QList<QByteArray> reviewRoles() {
    return {"kindTitle", "symbol", "path", "sizeText", "requiresAdministrator", "isSelected", "reason"};
}

std::set<std::string> idsOf(const std::vector<RelatedItem>& items) {
    std::set<std::string> ids;
    for (const RelatedItem& item : items) ids.insert(item.id());
    return ids;
}

}  // namespace

ReviewModel::ReviewModel(RemovalPlan plan, std::vector<std::string> reasons, const ViewServices& services,
                         QObject* parent)
    : QObject(parent),
      plan_(std::move(plan)),
      reasons_(std::move(reasons)),
      services_(services),
      removalService_(services.makeRemovalService()),
      selectedIDs_(idsOf(plan_.items)),
      items_(
          reviewRoles(), [this](int row) { return rowValues(row); }, this) {
    items_.fill(static_cast<int>(plan_.items.size()));
}

ReviewModel::~ReviewModel() {
    // Nobody is left to see the result, but the library is to know of it.
    if (result_) services_.start(&AppLibrary::updateSavedAvailability);
}

void ReviewModel::setReasons(std::vector<std::string> reasons) {
    reasons_ = std::move(reasons);
    changeAllRows();
}

QString ReviewModel::title() const {
    return QStringLiteral("Uninstall ") + displayText(plan_.application.name) + QStringLiteral("?");
}

QString ReviewModel::iconSource() const {
    return orvane::iconSource(plan_.application);
}

QString ReviewModel::selectAllTitle() const {
    return selectedIDs_.size() == plan_.items.size() ? QStringLiteral("Deselect All")
                                                     : QStringLiteral("Select All");
}

QString ReviewModel::progressText() const {
    return removalMode_ == RemovalMode::permanent ? QStringLiteral("Deleting permanently…")
                                                  : QStringLiteral("Moving to Trash…");
}

void ReviewModel::setConfirmingPermanentDeletion(bool isConfirming) {
    if (isConfirming == isConfirmingPermanentDeletion_ || (isConfirming && !canRemove())) return;
    isConfirmingPermanentDeletion_ = isConfirming;
    emit isConfirmingPermanentDeletionChanged();
}

QString ReviewModel::confirmationMessage() const {
    return QStringLiteral(
               "This will immediately delete %1 selected item(s). They will not be moved to Trash and cannot "
               "be recovered.")
        .arg(selectedIDs_.size());
}

QString ReviewModel::resultMessage() const {
    return result_ ? displayText(removalMessage(*result_, removalMode_)) : QString();
}

void ReviewModel::setSelected(int row, bool isSelected) {
    if (isRemoving_ || row < 0 || row >= items_.rowCount()) return;
    const auto idOf = [this](int index) { return plan_.items[static_cast<std::size_t>(index)].id(); };
    const std::string id = idOf(row);
    const bool isChange = isSelected ? selectedIDs_.insert(id).second : selectedIDs_.erase(id) > 0;
    if (!isChange) return;
    // Two items of one path are ticked together.
    for (int other = 0; other < items_.rowCount(); ++other)
        if (idOf(other) == id) items_.changeRows(other, other);
    emit selectionChanged();
    emit canRemoveChanged();
}

void ReviewModel::toggleAll() {
    const bool areAllSelected = selectedIDs_.size() == plan_.items.size();
    auto ids = areAllSelected ? std::set<std::string>() : idsOf(plan_.items);
    if (isRemoving_ || ids == selectedIDs_) return;
    selectedIDs_ = std::move(ids);
    changeAllRows();
    emit selectionChanged();
    emit canRemoveChanged();
}

void ReviewModel::changeAllRows() {
    items_.changeRows(0, items_.rowCount() - 1);
}

QVariantList ReviewModel::rowValues(int row) const {
    const auto index = static_cast<std::size_t>(row);
    const RelatedItem& item = plan_.items[index];
    return {displayText(rawValue(item.kind)), displayText(symbol(item.kind)),
            displayText(item.url.path()),     sizeText(item.size),
            item.requiresAdministrator,       selectedIDs_.contains(item.id()),
            displayText(reasons_[index])};
}

void ReviewModel::moveToTrash() {
    if (canRemove()) removeSelectedItems(RemovalMode::trash);
}

void ReviewModel::deletePermanently() {
    if (!isConfirmingPermanentDeletion_) return;
    setConfirmingPermanentDeletion(false);
    if (canRemove()) removeSelectedItems(RemovalMode::permanent);
}

void ReviewModel::removeSelectedItems(RemovalMode mode) {
    removalMode_ = mode;
    emit removalModeChanged();
    setRemoving(true);
    std::vector<RelatedItem> items;
    ReviewedPlan reviewed{{}, plan_.folders};
    for (const RelatedItem& item : plan_.items)
        (selectedIDs_.contains(item.id()) ? items : reviewed.kept).push_back(item);
    spawn(services_.mainExecutor, remove(this, removalService_, services_.library, mode, std::move(items),
                                         plan_.runningServices, std::move(reviewed)));
}

Task<void> ReviewModel::remove(QPointer<ReviewModel> sheet, std::shared_ptr<AppRemovalService> service,
                               std::shared_ptr<AppLibrary> library, RemovalMode mode,
                               std::vector<RelatedItem> items, std::vector<RunningService> runningServices,
                               ReviewedPlan reviewed) {
    RemovalResult result;
    if (mode == RemovalMode::permanent)
        result = co_await service->deletePermanently(std::move(items), std::move(runningServices),
                                                     std::move(reviewed));
    else
        result =
            co_await service->moveToTrash(std::move(items), std::move(runningServices), std::move(reviewed));
    if (sheet)
        sheet->finish(std::move(result));
    else
        co_await library->updateSavedAvailability();
}

void ReviewModel::setRemoving(bool isRemoving) {
    isRemoving_ = isRemoving;
    emit isRemovingChanged();
    emit canRemoveChanged();
}

void ReviewModel::finish(RemovalResult result) {
    result_ = std::move(result);
    emit resultChanged();
    setRemoving(false);
}

void ReviewModel::acknowledgeResult() {
    if (!std::exchange(result_, std::nullopt)) return;
    emit resultChanged();
    emit dismissed();
    services_.start(&AppLibrary::updateSavedAvailability);
}

}  // namespace orvane
