#pragma once

#include <QtQml/qqmlregistration.h>
#include <QtCore/QAbstractListModel>
#include <QtCore/QVariant>
#include <memory>
#include <string_view>

namespace orvane {

/// A list of rows for a view: given the rows as they should now be, it tells the view what has come, gone and
/// changed, never that everything is new. It holds none of their values, but asks for those that a view wants
/// to see. On the main thread.
class RowListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ANONYMOUS

  public:
    /// The rows of one moment, numbered from the top. Immutable.
    class Rows {
      public:
        virtual ~Rows() = default;
        virtual int count() const = 0;
        /// What makes it the same row when its values change. Need not be unique.
        virtual std::string_view id(int row) const = 0;
        /// Whether a row has the values of one of former rows, of the same class.
        virtual bool isEqual(int row, const Rows& former, int formerRow) const = 0;
        /// `role` is its place in the role names.
        virtual QVariant value(int row, int role) const = 0;
    };

    /// The first name belongs to Qt::UserRole, each further one to the next role. Without rows.
    explicit RowListModel(const QList<QByteArray>& roleNames, QObject* parent = nullptr);

    /// Leads the view from the rows that it knows to these. Not to be called from within its own signals.
    void setRows(std::unique_ptr<const Rows> rows);

    // What follows answers as the view sees the list, also from within the signals of `setRows`.

    /// The id of a row below `rowCount()`.
    std::string_view id(int row) const;
    /// The first row with that id; -1 when there is none.
    int rowOf(std::string_view id) const;
    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override { return roleNames_; }

  private:
    struct Place {
        const Rows& rows;
        int row;
    };

    Place place(int row) const;
    void keepNext(int count);
    void removeNext(int count);
    void insertNext(int count);

    QHash<int, QByteArray> roleNames_;
    std::unique_ptr<const Rows> rows_;
    // While rows are being led to new ones the view sees the first `shown_` of `rows_`, and behind them what
    // is left of `formerRows_` from `former_` on.
    int shown_ = 0;
    std::unique_ptr<const Rows> formerRows_;
    int former_ = 0;
};

}  // namespace orvane
