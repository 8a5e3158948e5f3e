# Completion of tavrin for fish.

complete -c tavrin -l droplet -x -a '(__fish_complete_directories)' -d 'Run the droplet in this folder'
complete -c tavrin -l launcher -r -F -d 'The launcher of the droplet'
complete -c tavrin -s h -l help -d 'Show how it is used'
complete -c tavrin -l version -d 'Show the version'
