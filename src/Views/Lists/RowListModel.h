#pragma once

#include <QtQml/qqmlregistration.h>
#include <QtCore/QAbstractListModel>
#include <QtCore/QVariantList>
#include <string>
#include <vector>

namespace orvane {

/// A list of rows for a view: given the rows as they should now be, it tells the view what has come, gone and
/// changed, never that everything is new. On the main thread.
class RowListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ANONYMOUS

  public:
    struct Row {
        /// What makes it the same row when its values change. Need not be unique.
        std::string id;
        /// One value per role, in the order of the role names.
        QVariantList values;

        friend bool operator==(const Row&, const Row&) = default;
    };

    /// The first name belongs to Qt::UserRole, each further one to the next role.
    explicit RowListModel(const QList<QByteArray>& roleNames, QObject* parent = nullptr);

    /// Leads the view from the rows that it knows to these. Not to be called from within its own signals.
    void setRows(std::vector<Row> rows);

    // What follows answers as the view sees the list, also from within the signals of `setRows`.

    /// A row below `rowCount()`.
    const Row& row(int index) const;
    /// The first row with that id; -1 when there is none.
    int rowOf(const std::string& id) const;
    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override { return roleNames_; }

  private:
    void keepNext(int count);
    void removeNext(int count);
    void insertNext(int count);

    QHash<int, QByteArray> roleNames_;
    std::vector<Row> rows_;
    // While rows are being led to new ones the view sees the first `shown_` of `rows_`, and behind them what
    // is left of `formerRows_` from `former_` on.
    int shown_ = 0;
    std::vector<Row> formerRows_;
    int former_ = 0;
};

}  // namespace orvane
