import QtQuick.Dialogs

/// The desktop's own dialog for a folder, where it has one.
FolderDialog {
    id: dialog

    signal folderChosen(folder: url)

    title: "Choose a Mac Disk"
    acceptLabel: "Open"
    onAccepted: folderChosen(selectedFolder)
}
