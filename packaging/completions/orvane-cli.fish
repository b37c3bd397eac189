# Completes orvane-cli in fish.

# The applications of the volume that the line names, as the program itself knows them.
function __orvane_applications
    set -l words (commandline -opc)
    set -l machine
    for i in (seq 2 (count $words))
        switch $words[$i]
            case --root --home
                if set -q words[(math $i + 1)]
                    set -a machine $words[$i] (string replace -r '^~/' "$HOME/" -- $words[(math $i + 1)])
                end
            case '--root=*' '--home=*'
                set -a machine $words[$i]
        end
    end
    # Each name ends in a NUL, which none can hold. What follows a tab would be a description.
    set -l names
    for name in ($words[1] $machine complete 2>/dev/null </dev/null | string split0)
        string match -q -- "*"\t"*" $name; or set -a names $name
    end
    string join0 -- $names | string split0
end

set -l commands list plan remove disks
complete -c orvane-cli -f
complete -c orvane-cli -l root -r -x -a '(__fish_complete_directories)' -d 'The Mac volume'
complete -c orvane-cli -l home -x -d "The user's home on the volume"
complete -c orvane-cli -s h -l help -d 'Print a summary of the options'
complete -c orvane-cli -l version -d 'Print the version'
complete -c orvane-cli -n "not __fish_seen_subcommand_from $commands" -a list -d 'List the applications'
complete -c orvane-cli -n "not __fish_seen_subcommand_from $commands" -a plan -d 'Show what belongs to one'
complete -c orvane-cli -n "not __fish_seen_subcommand_from $commands" -a remove -d 'Remove one'
complete -c orvane-cli -n "not __fish_seen_subcommand_from $commands" -a disks -d 'List the Mac disks of this machine'
complete -c orvane-cli -n "__fish_seen_subcommand_from $commands" -l json -d 'Write one JSON document'
complete -c orvane-cli -n '__fish_seen_subcommand_from list' -l rescan -d 'Look through the folders again'
complete -c orvane-cli -n '__fish_seen_subcommand_from list' -l search -x -d 'Only what contains TEXT'
complete -c orvane-cli -n '__fish_seen_subcommand_from plan' -l why -d 'Say of each item why it is there'
complete -c orvane-cli -n '__fish_seen_subcommand_from remove' -l permanently -d 'Delete for good'
complete -c orvane-cli -n '__fish_seen_subcommand_from remove' -l keep -x -d 'An item that stays'
complete -c orvane-cli -n '__fish_seen_subcommand_from remove' -l dry-run -d 'Show what would be removed'
complete -c orvane-cli -n '__fish_seen_subcommand_from remove' -l yes -d 'Do not ask'
complete -c orvane-cli -n '__fish_seen_subcommand_from plan remove' -a '(__orvane_applications)'
