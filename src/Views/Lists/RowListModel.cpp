#include "Views/Lists/RowListModel.h"

#include <utility>

#include "Views/Lists/RowDiff.h"

namespace orvane {
namespace {

std::vector<std::string> idsOf(const std::vector<RowListModel::Row>& rows) {
    std::vector<std::string> ids;
    ids.reserve(rows.size());
    for (const RowListModel::Row& row : rows) ids.push_back(row.id);
    return ids;
}

int sizeOf(const std::vector<RowListModel::Row>& rows) {
    return static_cast<int>(rows.size());
}

const RowListModel::Row& at(const std::vector<RowListModel::Row>& rows, int index) {
    return rows[static_cast<std::size_t>(index)];
}

}  // namespace

RowListModel::RowListModel(const QList<QByteArray>& roleNames, QObject* parent) : QAbstractListModel(parent) {
    int role = Qt::UserRole;
    for (const QByteArray& name : roleNames) roleNames_.insert(role++, name);
}

void RowListModel::setRows(std::vector<Row> rows) {
    const std::vector<RowStep> steps = rowDiff(idsOf(rows_), idsOf(rows));
    formerRows_ = std::exchange(rows_, std::move(rows));
    former_ = 0;
    shown_ = 0;
    for (const RowStep& step : steps) {
        switch (step.kind) {
            case RowStep::Kind::keep:
                keepNext(step.count);
                break;
            case RowStep::Kind::remove:
                removeNext(step.count);
                break;
            case RowStep::Kind::insert:
                insertNext(step.count);
                break;
        }
    }
    formerRows_.clear();
    former_ = 0;
}

int RowListModel::rowOf(const std::string& id) const {
    const int count = rowCount();
    for (int i = 0; i < count; ++i)
        if (row(i).id == id) return i;
    return -1;
}

int RowListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : shown_ + sizeOf(formerRows_) - former_;
}

QVariant RowListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount() || role < Qt::UserRole) return {};
    return row(index.row()).values.value(role - Qt::UserRole);
}

const RowListModel::Row& RowListModel::row(int index) const {
    return index < shown_ ? at(rows_, index) : at(formerRows_, index - shown_ + former_);
}

void RowListModel::keepNext(int count) {
    const int end = shown_ + count;
    while (shown_ < end) {
        const int first = shown_;
        const auto advance = [this] { ++shown_, ++former_; };
        while (shown_ < end && at(rows_, shown_) != at(formerRows_, former_)) advance();
        if (shown_ > first) emit dataChanged(index(first), index(shown_ - 1));
        while (shown_ < end && at(rows_, shown_) == at(formerRows_, former_)) advance();
    }
}

void RowListModel::removeNext(int count) {
    beginRemoveRows({}, shown_, shown_ + count - 1);
    former_ += count;
    endRemoveRows();
}

void RowListModel::insertNext(int count) {
    beginInsertRows({}, shown_, shown_ + count - 1);
    shown_ += count;
    endInsertRows();
}

}  // namespace orvane
