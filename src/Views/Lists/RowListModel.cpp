#include "Views/Lists/RowListModel.h"

#include <utility>
#include <vector>

#include "Views/Lists/RowDiff.h"

namespace orvane {
namespace {

int countOf(const std::unique_ptr<const RowListModel::Rows>& rows) {
    return rows ? rows->count() : 0;
}

std::vector<std::string_view> idsOf(const std::unique_ptr<const RowListModel::Rows>& rows) {
    std::vector<std::string_view> ids(static_cast<std::size_t>(countOf(rows)));
    for (std::size_t row = 0; row < ids.size(); ++row) ids[row] = rows->id(static_cast<int>(row));
    return ids;
}

}  // namespace

RowListModel::RowListModel(const QList<QByteArray>& roleNames, QObject* parent) : QAbstractListModel(parent) {
    int role = Qt::UserRole;
    for (const QByteArray& name : roleNames) roleNames_.insert(role++, name);
}

void RowListModel::setRows(std::unique_ptr<const Rows> rows) {
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
    formerRows_.reset();
    former_ = 0;
}

std::string_view RowListModel::id(int row) const {
    const Place place = this->place(row);
    return place.rows.id(place.row);
}

int RowListModel::rowOf(std::string_view id) const {
    const int count = rowCount();
    for (int row = 0; row < count; ++row)
        if (this->id(row) == id) return row;
    return -1;
}

int RowListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : shown_ + countOf(formerRows_) - former_;
}

QVariant RowListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount() || !roleNames_.contains(role)) return {};
    const Place place = this->place(index.row());
    return place.rows.value(place.row, role - Qt::UserRole);
}

RowListModel::Place RowListModel::place(int row) const {
    if (row < shown_) return {*rows_, row};
    return {*formerRows_, row - shown_ + former_};
}

void RowListModel::keepNext(int count) {
    const int end = shown_ + count;
    const auto isEqual = [this] { return rows_->isEqual(shown_, *formerRows_, former_); };
    const auto advance = [this] { ++shown_, ++former_; };
    while (shown_ < end) {
        const int first = shown_;
        while (shown_ < end && !isEqual()) advance();
        if (shown_ > first) emit dataChanged(index(first), index(shown_ - 1));
        while (shown_ < end && isEqual()) advance();
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
