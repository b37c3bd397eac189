#include "Views/Lists/LazyListModel.h"

#include <utility>

namespace orvane {

LazyListModel::LazyListModel(const QList<QByteArray>& roleNames, Values values, QObject* parent)
    : QAbstractListModel(parent), values_(std::move(values)) {
    int role = Qt::UserRole;
    for (const QByteArray& name : roleNames) roleNames_.insert(role++, name);
}

void LazyListModel::fill(int count) {
    if (count == 0) return;
    beginInsertRows({}, 0, count - 1);
    count_ = count;
    endInsertRows();
}

void LazyListModel::changeRows(int first, int last) {
    if (first <= last) emit dataChanged(index(first), index(last));
}

int LazyListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count_;
}

QVariant LazyListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count_ || role < Qt::UserRole) return {};
    return values_(index.row()).value(role - Qt::UserRole);
}

}  // namespace orvane
