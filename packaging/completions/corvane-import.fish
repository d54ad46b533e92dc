# Completion of corvane-import for fish.

complete -c corvane-import -f
complete -c corvane-import -l lite -d 'Import for the Lite edition'
complete -c corvane-import -l timeout -x -d 'Wait no longer than that many seconds'
complete -c corvane-import -s h -l help -d 'Show help and end'
complete -c corvane-import -l version -d 'Show the version and end'
