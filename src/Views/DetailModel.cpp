#include "Views/DetailModel.h"

#include <algorithm>
#include <asio/post.hpp>
#include <utility>

#include "Platform/Task.h"
#include "Services/DiskSize.h"
#include "Views/DisplayText.h"
#include "Views/Icons/IconSource.h"

namespace orvane {
namespace {

const QString underway = QStringLiteral("…");

bool isLaunchItem(const RelatedItem& item) {
    return item.kind == RelatedItemKind::launchAgent || item.kind == RelatedItemKind::launchDaemon;
}

/// The title is the item's own description, else its file's name; the reason a sentence, or nothing while it
/// is not known.
QList<QByteArray> relatedItemRoles() {
    return {"key", "title", "path", "kindTitle", "symbol", "sizeText", "requiresAdministrator", "reason"};
}

QList<QByteArray> runningServiceRoles() {
    return {"name", "caption"};
}

QVariantList runningServiceRow(const RunningService& service) {
    return {displayText(service.name),
            QStringLiteral("Running process • PID %1").arg(service.processIdentifier)};
}

}  // namespace

DetailModel::DetailModel(InstalledApplication application, const ViewServices& services, QObject* parent)
    : QObject(parent),
      application_(std::move(application)),
      services_(services),
      runningServices_(
          runningServiceRoles(),
          [this](int row) {
              return runningServiceRow(plan_->runningServices[static_cast<std::size_t>(row)]);
          },
          this),
      launchItems_(
          relatedItemRoles(),
          [this](int row) { return rowValues(launchItemPlaces_[static_cast<std::size_t>(row)]); }, this),
      fileItems_(
          relatedItemRoles(),
          [this](int row) { return rowValues(fileItemPlaces_[static_cast<std::size_t>(row)]); }, this) {
    spawn(services_.mainExecutor, requestPlan(this, services_.makePlanner(), application_));
}

void DetailModel::setApplication(InstalledApplication application) {
    if (application == application_) return;
    application_ = std::move(application);
    emit applicationChanged();
    emit canReviewChanged();
}

QString DetailModel::name() const {
    return displayText(application_.name);
}

QString DetailModel::fileName() const {
    return displayText(application_.url.lastPathComponent());
}

QString DetailModel::identifierText() const {
    return displayText(application_.bundleIdentifier.value_or("No bundle identifier"));
}

QString DetailModel::versionText() const {
    return QStringLiteral("Version ") + displayText(application_.version);
}

QString DetailModel::sizeText() const {
    return orvane::sizeText(application_.size);
}

QString DetailModel::iconSource() const {
    return orvane::iconSource(application_);
}

QString DetailModel::relatedItemsText() const {
    return plan_ ? QString::number(plan_->items.size()) : underway;
}

QString DetailModel::recoverableSpaceText() const {
    return plan_ ? orvane::sizeText(totalSize(plan_->items)) : underway;
}

QString DetailModel::activeServicesText() const {
    return plan_ ? QString::number(plan_->runningServices.size()) : underway;
}

bool DetailModel::showsEmptyServices() const {
    return plan_ && plan_->runningServices.empty() && std::ranges::none_of(plan_->items, isLaunchItem);
}

Task<void> DetailModel::requestPlan(QPointer<DetailModel> pane, std::shared_ptr<RemovalPlanner> planner,
                                    InstalledApplication application) {
    RemovalPlan plan = co_await planner->plan(std::move(application));
    if (!pane) co_return;
    pane->setPlan(plan);
    std::vector<std::string> reasons = co_await planner->reasons(std::move(plan));
    if (pane) pane->setReasons(std::move(reasons));
}

void DetailModel::setPlan(RemovalPlan plan) {
    plan_ = std::move(plan);
    reasons_.assign(plan_->items.size(), {});
    runningServices_.fill(static_cast<int>(plan_->runningServices.size()));
    for (std::size_t i = 0; i < plan_->items.size(); ++i)
        (isLaunchItem(plan_->items[i]) ? launchItemPlaces_ : fileItemPlaces_).push_back(i);
    launchItems_.fill(static_cast<int>(launchItemPlaces_.size()));
    fileItems_.fill(static_cast<int>(fileItemPlaces_.size()));
    emit planChanged();
    emit canReviewChanged();
}

void DetailModel::setReasons(std::vector<std::string> reasons) {
    reasons_ = std::move(reasons);
    launchItems_.changeRows(0, launchItems_.rowCount() - 1);
    fileItems_.changeRows(0, fileItems_.rowCount() - 1);
    if (review_) review_->setReasons(reasons_);
}

QVariantList DetailModel::rowValues(std::size_t place) const {
    const RelatedItem& item = plan_->items[place];
    return {keyOfBytes(item.id()),          displayText(item.detail.value_or(item.url.lastPathComponent())),
            displayText(item.url.path()),   displayText(rawValue(item.kind)),
            displayText(symbol(item.kind)), orvane::sizeText(item.size),
            item.requiresAdministrator,     displayText(reasons_[place])};
}

void DetailModel::setShowingRemovalSheet(bool isShowing) {
    if (isShowing == isShowingRemovalSheet_) return;
    if (isShowing ? !canReview() : review_->isRemoving()) return;
    isShowingRemovalSheet_ = isShowing;
    if (isShowing) {
        if (review_) review_->deleteLater();
        review_ = new ReviewModel(*plan_, reasons_, services_, this);
        connect(review_, &ReviewModel::dismissed, this, &DetailModel::dismissSheet);
    }
    emit isShowingRemovalSheetChanged();
}

void DetailModel::setSheetInView(bool isInView) {
    if (isInView == isSheetInView_) return;
    isSheetInView_ = isInView;
    emit isSheetInViewChanged();
}

void DetailModel::reveal(const QString& key) {
    if (!plan_) return;
    const std::string id = bytesOfKey(key);
    const auto item = std::ranges::find(plan_->items, id, &RelatedItem::id);
    if (item != plan_->items.end()) revealFile(item->url);
}

void DetailModel::revealFile(const FileURL& url) {
    asio::post(services_.pool,
               [&workspace = services_.workspace, url] { workspace.activateFileViewerSelecting(url); });
}

}  // namespace orvane
