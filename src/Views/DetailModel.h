#pragma once

#include <QtQml/qqmlregistration.h>
#include <QtCore/QAbstractItemModel>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QString>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Models/InstalledApplication.h"
#include "Models/RemovalPlan.h"
#include "Views/Lists/LazyListModel.h"
#include "Views/ReviewModel.h"
#include "Views/ViewServices.h"

namespace orvane {

/// The detail pane of one application: its facts, the plan for its removal once that has arrived, and the
/// review sheet while it is shown. Asks for the plan once, when it is made. On the main thread.
class DetailModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of ContentModel")

    Q_PROPERTY(QString name READ name NOTIFY applicationChanged)
    /// What stands in the place of a name that is empty.
    Q_PROPERTY(QString fileName READ fileName NOTIFY applicationChanged)
    Q_PROPERTY(QString identifierText READ identifierText NOTIFY applicationChanged)
    Q_PROPERTY(QString versionText READ versionText NOTIFY applicationChanged)
    Q_PROPERTY(QString sizeText READ sizeText NOTIFY applicationChanged)
    Q_PROPERTY(QString iconSource READ iconSource NOTIFY applicationChanged)
    Q_PROPERTY(bool isInstalled READ isInstalled NOTIFY applicationChanged)
    Q_PROPERTY(bool isSystemApplication READ isSystemApplication NOTIFY applicationChanged)

    Q_PROPERTY(bool isLoading READ isLoading NOTIFY planChanged)
    Q_PROPERTY(QString relatedItemsText READ relatedItemsText NOTIFY planChanged)
    Q_PROPERTY(QString recoverableSpaceText READ recoverableSpaceText NOTIFY planChanged)
    Q_PROPERTY(QString activeServicesText READ activeServicesText NOTIFY planChanged)
    /// Rows: name, caption.
    Q_PROPERTY(QAbstractItemModel* services READ runningServices CONSTANT)
    /// Rows of both: see `relatedItemRoles`. The reasons follow a little later than the plan.
    Q_PROPERTY(QAbstractItemModel* launchItems READ launchItems CONSTANT)
    Q_PROPERTY(QAbstractItemModel* fileItems READ fileItems CONSTANT)
    Q_PROPERTY(bool showsEmptyServices READ showsEmptyServices NOTIFY planChanged)

    Q_PROPERTY(bool canReview READ canReview NOTIFY canReviewChanged)
    /// Can be set only while the pane can be reviewed, and cleared only while no removal runs.
    Q_PROPERTY(bool isShowingRemovalSheet READ isShowingRemovalSheet WRITE setShowingRemovalSheet NOTIFY
                   isShowingRemovalSheetChanged)
    /// The sheet can be seen, be it that it only slides away. Views say so; until then the pane is to stay.
    Q_PROPERTY(bool isSheetInView READ isSheetInView WRITE setSheetInView NOTIFY isSheetInViewChanged)
    /// Of the sheet that is shown, or of the last one, which a view may still be taking away; null before the
    /// first.
    Q_PROPERTY(orvane::ReviewModel* review READ review NOTIFY isShowingRemovalSheetChanged)

  public:
    DetailModel(InstalledApplication application, const ViewServices& services, QObject* parent = nullptr);

    const std::string& id() const { return application_.id(); }
    /// The same application, as it has been found since. The plan stays.
    void setApplication(InstalledApplication application);

    QString name() const;
    QString fileName() const;
    QString identifierText() const;
    QString versionText() const;
    QString sizeText() const;
    QString iconSource() const;
    bool isInstalled() const { return application_.isInstalled; }
    bool isSystemApplication() const { return application_.isSystemApplication; }

    bool isLoading() const { return !plan_; }
    QString relatedItemsText() const;
    QString recoverableSpaceText() const;
    QString activeServicesText() const;
    QAbstractItemModel* runningServices() { return &runningServices_; }
    QAbstractItemModel* launchItems() { return &launchItems_; }
    QAbstractItemModel* fileItems() { return &fileItems_; }
    bool showsEmptyServices() const;

    bool canReview() const { return plan_ && !application_.isSystemApplication; }
    bool isShowingRemovalSheet() const { return isShowingRemovalSheet_; }
    void setShowingRemovalSheet(bool isShowing);
    bool isSheetInView() const { return isSheetInView_; }
    void setSheetInView(bool isInView);
    ReviewModel* review() const { return review_; }

    /// Shows the application in the file viewer.
    Q_INVOKABLE void revealApplication() { revealFile(application_.url); }
    /// Shows the item of the plan with that key in the file viewer.
    Q_INVOKABLE void reveal(const QString& key);
    Q_INVOKABLE void dismissSheet() { setShowingRemovalSheet(false); }

  signals:
    void applicationChanged();
    void planChanged();
    void canReviewChanged();
    void isShowingRemovalSheetChanged();
    void isSheetInViewChanged();

  private:
    /// A pane that has gone when the plan arrives is not told.
    static Task<void> requestPlan(QPointer<DetailModel> pane, std::shared_ptr<RemovalPlanner> planner,
                                  InstalledApplication application);
    void setPlan(RemovalPlan plan);
    void setReasons(std::vector<std::string> reasons);
    /// The values of an item's row in either list.
    QVariantList rowValues(std::size_t place) const;
    void revealFile(const FileURL& url);

    InstalledApplication application_;
    const ViewServices& services_;
    std::optional<RemovalPlan> plan_;
    /// Why each item is in the plan; as many as there are items.
    std::vector<std::string> reasons_;
    LazyListModel runningServices_;
    /// Which items of the plan the rows of either list are.
    std::vector<std::size_t> launchItemPlaces_;
    std::vector<std::size_t> fileItemPlaces_;
    LazyListModel launchItems_;
    LazyListModel fileItems_;
    bool isShowingRemovalSheet_ = false;
    bool isSheetInView_ = false;
    ReviewModel* review_ = nullptr;
};

}  // namespace orvane
