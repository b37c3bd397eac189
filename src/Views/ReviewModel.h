#pragma once

#include <QtQml/qqmlregistration.h>
#include <QtCore/QAbstractItemModel>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QString>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Models/RemovalPlan.h"
#include "Models/RemovalResult.h"
#include "Services/RemovalMessage.h"
#include "Views/Lists/LazyListModel.h"
#include "Views/ViewServices.h"

namespace orvane {

/// One review sheet: which items of a plan are selected, the removal of those, and what became of it. A
/// removal that has begun goes on when the sheet goes away, and the library is refreshed after it all the
/// same. On the main thread.
class ReviewModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of DetailModel")

    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString iconSource READ iconSource CONSTANT)
    /// Rows: kindTitle, symbol, path, sizeText, requiresAdministrator, isSelected, reason.
    Q_PROPERTY(QAbstractItemModel* items READ items CONSTANT)
    Q_PROPERTY(QString selectAllTitle READ selectAllTitle NOTIFY selectionChanged)
    Q_PROPERTY(bool isRemoving READ isRemoving NOTIFY isRemovingChanged)
    Q_PROPERTY(QString progressText READ progressText NOTIFY removalModeChanged)
    Q_PROPERTY(bool canRemove READ canRemove NOTIFY canRemoveChanged)
    Q_PROPERTY(bool isConfirmingPermanentDeletion READ isConfirmingPermanentDeletion WRITE
                   setConfirmingPermanentDeletion NOTIFY isConfirmingPermanentDeletionChanged)
    Q_PROPERTY(QString confirmationMessage READ confirmationMessage NOTIFY selectionChanged)
    Q_PROPERTY(bool hasResult READ hasResult NOTIFY resultChanged)
    Q_PROPERTY(QString resultMessage READ resultMessage NOTIFY resultChanged)
    Q_PROPERTY(Mode removalMode READ removalMode NOTIFY removalModeChanged)

  public:
    enum Mode { Trash, Permanent };
    Q_ENUM(Mode)

    /// With why each item of the plan is in it, in its order; nothing of what is not known yet.
    ReviewModel(RemovalPlan plan, std::vector<std::string> reasons, const ViewServices& services,
                QObject* parent = nullptr);
    ~ReviewModel() override;

    void setReasons(std::vector<std::string> reasons);

    QString title() const;
    QString iconSource() const;
    QAbstractItemModel* items() { return &items_; }
    QString selectAllTitle() const;
    bool isRemoving() const { return isRemoving_; }
    QString progressText() const;
    bool canRemove() const { return !selectedIDs_.empty() && !isRemoving_; }
    bool isConfirmingPermanentDeletion() const { return isConfirmingPermanentDeletion_; }
    void setConfirmingPermanentDeletion(bool isConfirming);
    QString confirmationMessage() const;
    bool hasResult() const { return result_.has_value(); }
    QString resultMessage() const;
    Mode removalMode() const { return removalMode_ == RemovalMode::trash ? Trash : Permanent; }

    Q_INVOKABLE void setSelected(int row, bool isSelected);
    /// Selects every item, or none when as many are selected as there are items.
    Q_INVOKABLE void toggleAll();
    Q_INVOKABLE void moveToTrash();
    /// Only once the question has been put: does nothing unless `isConfirmingPermanentDeletion`.
    Q_INVOKABLE void deletePermanently();
    Q_INVOKABLE void cancelConfirmation() { setConfirmingPermanentDeletion(false); }
    /// The result has been seen: dismisses the sheet and refreshes the library.
    Q_INVOKABLE void acknowledgeResult();

  signals:
    void selectionChanged();
    void isRemovingChanged();
    void canRemoveChanged();
    void isConfirmingPermanentDeletionChanged();
    void resultChanged();
    void removalModeChanged();
    /// The sheet has done its work and is to close.
    void dismissed();

  private:
    /// Depends on nothing that goes away with the sheet.
    static Task<void> remove(QPointer<ReviewModel> sheet, std::shared_ptr<AppRemovalService> service,
                             std::shared_ptr<AppLibrary> library, RemovalMode mode,
                             std::vector<RelatedItem> items, std::vector<RunningService> runningServices,
                             ReviewedPlan reviewed);
    void changeAllRows();
    /// The values of an item's row.
    QVariantList rowValues(int row) const;
    void removeSelectedItems(RemovalMode mode);
    void setRemoving(bool isRemoving);
    void finish(RemovalResult result);

    RemovalPlan plan_;
    std::vector<std::string> reasons_;
    const ViewServices& services_;
    std::shared_ptr<AppRemovalService> removalService_;
    std::set<std::string> selectedIDs_;
    LazyListModel items_;
    bool isRemoving_ = false;
    std::optional<RemovalResult> result_;
    RemovalMode removalMode_ = RemovalMode::trash;
    bool isConfirmingPermanentDeletion_ = false;
};

}  // namespace orvane
