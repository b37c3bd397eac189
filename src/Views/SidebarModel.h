#pragma once

#include <QtQml/qqmlregistration.h>
#include <QtCore/QString>
#include <optional>
#include <string>

#include "Services/AppLibrary.h"
#include "Views/Lists/RowListModel.h"
#include "Views/ViewServices.h"

namespace orvane {

/// The sidebar: a row for every application that the search lets through, and what surrounds the list. It
/// keeps its own search text and selection; what the user changes in them reaches the library on the next
/// turn of the event loop. On the main thread.
class SidebarModel : public RowListModel, private AppLibrary::Observer {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of ContentModel")

    Q_PROPERTY(QString searchText READ searchText WRITE setSearchText NOTIFY searchTextChanged)
    Q_PROPERTY(QString selectedKey READ selectedKey WRITE setSelectedKey NOTIFY selectedKeyChanged)
    /// The row of the selected application; -1 when none is selected, or the search hides it.
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectedRowChanged)
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY isScanningChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(QString countText READ countText NOTIFY countChanged)
    Q_PROPERTY(bool showsSearchPlaceholder READ showsSearchPlaceholder NOTIFY placeholderChanged)
    Q_PROPERTY(QString placeholderTitle READ placeholderTitle NOTIFY placeholderChanged)
    Q_PROPERTY(QString placeholderDescription READ placeholderDescription CONSTANT)

  public:
    explicit SidebarModel(const ViewServices& services, QObject* parent = nullptr);
    ~SidebarModel() override;

    QString searchText() const { return searchText_; }
    void setSearchText(const QString& text);
    /// The key of the selected application; null when none is.
    QString selectedKey() const;
    void setSelectedKey(const QString& key);
    int selectedRow() const { return selectedRow_; }
    bool isScanning() const { return services_.library->isScanning(); }
    int count() const { return rowCount(); }
    QString countText() const;
    bool showsSearchPlaceholder() const;
    QString placeholderTitle() const;
    QString placeholderDescription() const;

    /// The sidebar is shown: takes the library's search text and selection over.
    Q_INVOKABLE void appear();
    /// Starts a scan, unless one is running.
    Q_INVOKABLE void rescan();
    Q_INVOKABLE void select(int row);
    /// The first row whose name begins with a text, without regard to case; -1 when there is none.
    Q_INVOKABLE int rowBeginningWith(const QString& text) const;

  signals:
    void searchTextChanged();
    void selectedKeyChanged();
    void selectedRowChanged();
    void isScanningChanged();
    void countChanged();
    void placeholderChanged();

  private:
    using ID = std::optional<std::string>;

    void libraryDidChange(AppLibrary::Field field) override;
    void showApplications();
    void showSelection(const ID& id);
    void setSelectedID(ID id);
    void updateSelectedRow();

    const ViewServices& services_;
    QString searchText_;
    ID selectedID_;
    int selectedRow_ = -1;
    // Changes by the user that the library is yet to be told of.
    int searchTextsUnderway_ = 0;
    int selectionsUnderway_ = 0;
};

}  // namespace orvane
