# Completes orvane in fish.
complete -c orvane -f
complete -c orvane -l root -r -x -a '(__fish_complete_directories)' -d 'The Mac volume'
complete -c orvane -l home -x -d "The user's home on the volume"
complete -c orvane -l appearance -x -a 'light dark system' -d 'How it looks'
complete -c orvane -s h -l help -d 'Print a summary of the options'
complete -c orvane -l version -d 'Print the version'
