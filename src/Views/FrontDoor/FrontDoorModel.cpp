#include "Views/FrontDoor/FrontDoorModel.h"

#include <QtCore/QPointer>
#include <asio/post.hpp>
#include <utility>

#include "Models/FileURL.h"
#include "Views/DisplayText.h"

namespace orvane {
namespace {

QString lastName(const std::string& path) {
    return displayText(FileURL::fromPath(path, true).lastPathComponent());
}

}  // namespace

FrontDoorModel::FrontDoorModel(Surroundings surroundings, OnlyDisk onlyDisk, bool canCancel, QObject* parent)
    : QAbstractListModel(parent),
      surroundings_(std::move(surroundings)),
      onlyDisk_(onlyDisk),
      canCancel_(canCancel) {}

void FrontDoorModel::setMessage(const QString& message) {
    if (std::exchange(message_, message) != message) emit messageChanged();
}

void FrontDoorModel::look() {
    setMessage({});
    // The table of mounts is the kernel's own and never waits for a disk.
    lookAt(surroundings_.folders(), &FrontDoorModel::showMounted);
}

void FrontDoorModel::open(int row) {
    if (row < 0 || row >= count()) return;
    const auto& place = places_[static_cast<std::size_t>(row)].place;
    if (place.home.empty()) return;
    isChosen_ = true;
    emit chosen(DiskPlace(place));
}

void FrontDoorModel::openFolder(const QUrl& folder) {
    setMessage({});
    // Byte by byte: a folder's name need not be text.
    const auto url = FileURL::fromString(folder.toEncoded().toStdString());
    const auto path = url ? url->fileSystemPath() : std::nullopt;
    if (!path) {
        setMessage(QStringLiteral("That is no folder of this machine."));
        return;
    }
    lookAt({std::string(*path)}, &FrontDoorModel::showFolder);
}

void FrontDoorModel::lookAt(std::vector<std::string> folders, void (FrontDoorModel::*then)(const MacDisks&)) {
    if (looks_++ == 0) emit isLookingChanged();
    const auto main = surroundings_.mainExecutor;
    const auto patience = surroundings_.patience;
    asio::post(surroundings_.pool,
               [self = QPointer(this), main, patience, then, folders = std::move(folders)] {
                   auto found = macDisksAmong(folders, patience);
                   asio::post(main, [self, then, found = std::move(found)] {
                       if (!self) return;
                       ((*self).*then)(found);
                       if (--self->looks_ == 0 && !self->isChosen_) emit self->isLookingChanged();
                   });
               });
}

void FrontDoorModel::showMounted(const MacDisks& found) {
    show(found.disks);
    if (!found.silent.empty()) {
        const auto more = found.silent.size() > 1
                              ? QStringLiteral(", and %1 more").arg(found.silent.size() - 1)
                              : QString();
        setMessage(QStringLiteral("“%1” does not answer%2.").arg(displayText(found.silent.front()), more));
    }
    const bool isFirst = std::exchange(onlyDisk_, OnlyDisk::isOffered) == OnlyDisk::isOpened;
    if (isFirst && count() == 1 && found.silent.empty()) open(0);
}

void FrontDoorModel::showFolder(const MacDisks& found) {
    if (!found.silent.empty()) {
        setMessage(QStringLiteral("“%1” does not answer.").arg(displayText(found.silent.front())));
    } else if (found.disks.empty()) {
        setMessage(
            QStringLiteral("That folder is no Mac's disk: one has the folders Applications and Users, and "
                           "System or Library."));
    } else if (found.disks.front().homes.empty()) {
        setMessage(QStringLiteral("That disk holds no user's home in Users."));
    } else {
        show(found.disks);
        if (count() == 1) open(0);
    }
}

void FrontDoorModel::show(const std::vector<MacDisk>& disks) {
    beginResetModel();
    places_.clear();
    for (const auto& disk : disks) {
        for (auto& row : rowsOf(disk)) places_.push_back(std::move(row));
    }
    endResetModel();
    emit countChanged();
}

std::vector<FrontDoorModel::Row> FrontDoorModel::rowsOf(const MacDisk& disk) {
    const auto name = lastName(disk.root);
    auto about = QStringLiteral("%1 • %2, %3 free")
                     .arg(displayText(disk.root), sizeText(disk.capacity), sizeText(disk.available));
    if (disk.isReadOnly) about += QStringLiteral(" • Read-only");
    if (disk.homes.empty()) return {{{disk.root, {}}, name, about + QStringLiteral(" • No user's home")}};
    std::vector<Row> rows;
    for (const auto& home : disk.homes) {
        const auto user = lastName(home.path);
        rows.push_back({{disk.root, home.path},
                        disk.homes.size() == 1 ? name : QStringLiteral("%1 on %2").arg(user, name),
                        disk.homes.size() == 1 ? about + QStringLiteral(" • ") + user : about});
    }
    return rows;
}

int FrontDoorModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant FrontDoorModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count()) return {};
    const auto& row = places_[static_cast<std::size_t>(index.row())];
    switch (static_cast<Role>(role)) {
        case Role::title:
            return row.title;
        case Role::caption:
            return row.caption;
        case Role::canBeOpened:
            return !row.place.home.empty();
    }
    return {};
}

QHash<int, QByteArray> FrontDoorModel::roleNames() const {
    return {{static_cast<int>(Role::title), "title"},
            {static_cast<int>(Role::caption), "caption"},
            {static_cast<int>(Role::canBeOpened), "canBeOpened"}};
}

}  // namespace orvane
