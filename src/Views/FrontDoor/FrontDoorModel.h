#pragma once

#include <QtQml/qqmlregistration.h>
#include <QtCore/QAbstractListModel>
#include <QtCore/QUrl>
#include <asio/any_io_executor.hpp>
#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "Platform/MacDisks.h"

namespace orvane {

/// A home on a disk of this machine.
struct DiskPlace {
    /// The disk's root, a path of this machine, and the home, a path of the Mac's.
    std::string root;
    std::string home;
    friend bool operator==(const DiskPlace&, const DiskPlace&) = default;
};

/// Where the program begins on a machine that is no Mac: the Mac disks that are mounted, a row for each home
/// on them, to choose one from. On the main thread.
class FrontDoorModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")

    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(bool isLooking READ isLooking NOTIFY isLookingChanged)
    /// What there is to say of the last look or the last choice; empty for nothing.
    Q_PROPERTY(QString message READ message NOTIFY messageChanged)
    /// Whether there is a disk to go back to.
    Q_PROPERTY(bool canCancel READ canCancel CONSTANT)

  public:
    enum class Role { title = Qt::UserRole, caption, canBeOpened };

    struct Surroundings {
        asio::any_io_executor mainExecutor;
        /// For what may block. Idle before the model goes, or has been stopped.
        asio::any_io_executor pool;
        /// The folders that are looked at; this machine's mounts.
        std::function<std::vector<std::string>()> folders = mountedFolders;
        std::chrono::milliseconds patience{3000};
    };
    enum class OnlyDisk { isOpened, isOffered };

    /// `onlyDisk` says what becomes of the first look's only home.
    FrontDoorModel(Surroundings surroundings, OnlyDisk onlyDisk, bool canCancel, QObject* parent = nullptr);

    int count() const { return static_cast<int>(places_.size()); }
    bool isLooking() const { return looks_ > 0; }
    QString message() const { return message_; }
    bool canCancel() const { return canCancel_; }
    void setMessage(const QString& message);

    /// Looks at the mounted disks, in the background.
    Q_INVOKABLE void look();
    /// Chooses a row.
    Q_INVOKABLE void open(int row);
    /// Looks at a folder that a person has named. The only home on it is chosen; several are offered.
    Q_INVOKABLE void openFolder(const QUrl& folder);
    Q_INVOKABLE void cancel() { emit cancelled(); }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

  signals:
    void countChanged();
    void isLookingChanged();
    void messageChanged();
    void chosen(const orvane::DiskPlace& place);
    void cancelled();

  private:
    struct Row {
        DiskPlace place;
        QString title;
        QString caption;
    };
    static std::vector<Row> rowsOf(const MacDisk& disk);
    void lookAt(std::vector<std::string> folders, void (FrontDoorModel::*then)(const MacDisks&));
    void showMounted(const MacDisks& found);
    void showFolder(const MacDisks& found);
    void show(const std::vector<MacDisk>& disks);

    Surroundings surroundings_;
    OnlyDisk onlyDisk_;
    bool canCancel_;
    int looks_ = 0;
    /// Then nothing more is told: the window goes.
    bool isChosen_ = false;
    QString message_;
    std::vector<Row> places_;
};

}  // namespace orvane
