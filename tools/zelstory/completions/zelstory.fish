# Completion of zelstory for fish. A test compares it with zelstory COMMAND --help.

function __zelstory_command -d 'Whether the command line has one of these commands'
    set -l words (commandline -opc)
    test (count $words) -ge 2; and contains -- $words[2] $argv
end

function __zelstory_no_command
    test (count (commandline -opc)) -eq 1
end

complete -c zelstory -f
complete -c zelstory -s h -l help -d 'Show the usage'
complete -c zelstory -n __zelstory_no_command -l version -d 'Show the version'
complete -c zelstory -n __zelstory_no_command -a check -d 'Validate scripts'
complete -c zelstory -n __zelstory_no_command -a show -d 'Print a story as a screenplay, or as JSON'
complete -c zelstory -n __zelstory_no_command -a write -d 'Write a scene into the sidecar of a clip'
complete -c zelstory -n __zelstory_no_command -a tag -d 'Write scenes into the sidecars of many clips'
complete -c zelstory -n __zelstory_no_command -a clear -d 'Remove a scene from sidecars'
complete -c zelstory -n __zelstory_no_command -a has -d 'Test whether sidecars hold a scene'
complete -c zelstory -n __zelstory_no_command -a xmp -d 'Print the metadata of a sidecar'
complete -c zelstory -n __zelstory_no_command -a shots -d 'Write a packet for every scene'
complete -c zelstory -n __zelstory_no_command -a scenes -d 'List the scenes'
complete -c zelstory -n __zelstory_no_command -a characters -d 'List who speaks'
complete -c zelstory -n __zelstory_no_command -a stats -d 'Count scenes, paragraphs and words'
complete -c zelstory -n __zelstory_no_command -a report -d 'Write one page about a story'
complete -c zelstory -n __zelstory_no_command -a convert -d 'Write a script in another format'
complete -c zelstory -n __zelstory_no_command -a dump -d 'Dump packets into the temporary folder'

complete -c zelstory -n '__zelstory_command check show tag xmp scenes characters stats' -l json -d 'Print JSON'
complete -c zelstory -n '__zelstory_command scenes characters stats' -l csv -d 'Print comma-separated values'
complete -c zelstory -n '__zelstory_command scenes characters stats' -l raw -d 'Print no apostrophes before formulas'
complete -c zelstory -n '__zelstory_command scenes characters stats' -l bom -d 'Begin with a byte-order mark'
complete -c zelstory -n '__zelstory_command show' -l comments -d 'Also print the comment streams'
complete -c zelstory -n '__zelstory_command show write' -x -l scene -d 'Choose a scene by its number'
complete -c zelstory -n '__zelstory_command show write' -x -l position -d 'Choose a scene by its position'
complete -c zelstory -n '__zelstory_command show write' -x -l id -d 'Choose a scene by its identifier'
complete -c zelstory -n '__zelstory_command write tag clear' -l dry-run -d 'Show what would change'
complete -c zelstory -n '__zelstory_command write tag clear' -l diff -d 'With --dry-run, show the lines that would change'
complete -c zelstory -n '__zelstory_command write tag clear' -l force -d 'Also change protected files and packets'
complete -c zelstory -n '__zelstory_command write tag clear' -l no-wait -d 'Fail instead of waiting for the folder'
complete -c zelstory -n '__zelstory_command write tag' -l merge -d 'Keep what the new scene lacks'
complete -c zelstory -n '__zelstory_command check' -l strict -d 'Fail after warnings'
complete -c zelstory -n '__zelstory_command clear has' -l strict -d 'Refuse clips without a sidecar'
complete -c zelstory -n '__zelstory_command write tag clear has xmp' -x -l sidecar-name -a 'full stem' -d 'Name a new sidecar'
complete -c zelstory -n '__zelstory_command tag' -r -l table -k -a '(__fish_complete_suffix .csv)' -d 'Table of clips and scenes'
complete -c zelstory -n '__zelstory_command tag' -x -l clips -a '(__fish_complete_directories)' -d 'Folder of the clips'
complete -c zelstory -n '__zelstory_command tag' -l keep-going -d 'Write the other clips if rows have faults'
complete -c zelstory -n '__zelstory_command report' -r -l html -k -a '(__fish_complete_suffix .html)' -d 'The page'
complete -c zelstory -n '__zelstory_command report' -x -l title -d 'Title of the page'
complete -c zelstory -n '__zelstory_command shots' -x -l out -a '(__fish_complete_directories)' -d 'Folder for the packets'
complete -c zelstory -n '__zelstory_command shots' -l force -d 'Also replace other files'
complete -c zelstory -n '__zelstory_command check show write tag shots scenes characters stats report convert dump' -x -l format -a 'story fountain fdx' -d 'Read the script in this format'
complete -c zelstory -n '__zelstory_command check write tag shots scenes report' -r -l headings -k -a 'common exact (__fish_complete_path)' -d 'Read headings by these rules'
complete -c zelstory -n '__zelstory_command convert' -x -l to -a 'story fountain fdx' -d 'Write this format'
complete -c zelstory -n '__zelstory_command convert' -x -l out -a '(__fish_complete_directories)' -d 'Folder for the outputs'
complete -c zelstory -n '__zelstory_command convert' -l force -d 'Replace files that exist'

complete -c zelstory -n '__zelstory_command check show write tag shots scenes characters stats report convert dump' -a '(__fish_complete_suffix .fountain .spmd .txt .fdx .quor)'
complete -c zelstory -n '__zelstory_command write clear has xmp' -F
