#pragma once

#include <QtQml/qqmlregistration.h>
#include <QtCore/QAbstractListModel>
#include <QtCore/QVariantList>
#include <functional>

namespace orvane {

/// A list of rows that are there all at once and keep their order, however many: it holds none of their
/// values, but asks for those of a row when a view does. On the main thread.
class LazyListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ANONYMOUS

  public:
    /// The values of a row, one per role, in the order of the role names.
    using Values = std::function<QVariantList(int row)>;

    /// The first name belongs to Qt::UserRole, each further one to the next role.
    LazyListModel(const QList<QByteArray>& roleNames, Values values, QObject* parent = nullptr);

    /// Gives a list without rows its rows, which can be asked for by now.
    void fill(int count);
    /// The values of these rows are other ones now.
    void changeRows(int first, int last);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override { return roleNames_; }

  private:
    QHash<int, QByteArray> roleNames_;
    Values values_;
    int count_ = 0;
};

}  // namespace orvane
