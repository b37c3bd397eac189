pragma ComponentBehavior: Bound
import QtQml
import QtQuick.Templates as T
import Qt.labs.platform as Platform
import Orvane

/// The Mac's own menu bar: the menus and the commands of the one in the window. The Mac has the first of them, that of
/// the program, already: what is in it finds its place there by its role.
Platform.MenuBar {
    id: bar

    required property T.MenuBar mirrored

    function commandsOf(menu: T.Menu): list<Command> {
        const commands = []
        for (let i = 0; i < (menu?.count ?? 0); ++i) {
            const command = (menu.itemAt(i) as T.MenuItem)?.action as Command
            if (command)
                commands.push(command)
        }
        return commands
    }

    function roleOf(command: Command): int {
        switch (command?.objectName) {
        case "aboutCommand":
            return Platform.MenuItem.AboutRole
        case "quitCommand":
            return Platform.MenuItem.QuitRole
        default:
            return Platform.MenuItem.NoRole
        }
    }

    readonly property Instantiator menus_: Instantiator {
        model: Math.max(0, bar.mirrored.count - 1)

        delegate: Platform.Menu {
            id: nativeMenu

            required property int index
            readonly property T.Menu original: bar.mirrored.menuAt(index + 1)
            readonly property list<Command> commands: [
                ...bar.commandsOf(original), ...(index === 0 ? bar.commandsOf(bar.mirrored.menuAt(0)) : [])
            ]

            readonly property Instantiator items_: Instantiator {
                model: nativeMenu.commands.length

                delegate: Platform.MenuItem {
                    required property int index
                    readonly property Command command: nativeMenu?.commands[index] ?? null

                    text: command?.text ?? ""
                    enabled: command?.enabled ?? false
                    shortcut: command?.keys ?? ""
                    role: bar.roleOf(command)
                    onTriggered: command.trigger()
                }

                onObjectAdded: (index, object) => nativeMenu.insertItem(index, object as Platform.MenuItem)
                onObjectRemoved: (index, object) => nativeMenu.removeItem(object as Platform.MenuItem)
            }

            title: original.title
        }

        onObjectAdded: (index, object) => bar.insertMenu(index, object as Platform.Menu)
        onObjectRemoved: (index, object) => bar.removeMenu(object as Platform.Menu)
    }
}
