# Completes the commands and options of NerixHost and NerixVerifierHash in fish.

function __nerix_methods
    NerixVerifierHash --help 2>/dev/null | string match -rg 'one of: ([^.]*)' | string split ' '
end

function __nerix_is
    test (count (commandline -opc)) -gt 1; and contains -- (commandline -opc)[2] $argv
end

complete -c NerixHost -n 'not __nerix_is compare scan settings' -fa 'compare scan settings --help --version'
complete -c NerixHost -s h -l help -d 'Print the help'
complete -c NerixHost -n '__nerix_is scan compare' -s H -l hash -xa '(__nerix_methods)' -d 'Hash method'
complete -c NerixHost -n '__nerix_is scan compare' -s q -l quiet -d 'Show no progress'
complete -c NerixHost -n '__nerix_is scan compare settings' -l json -d 'Print JSON'

complete -c NerixHost -n '__nerix_is compare' -s i -l ignore -x -d 'Do not compare these facts' \
    -a 'kind content attributes target owner group links mode size'
complete -c NerixHost -n '__nerix_is compare' -s x -l exclude -x -d 'Do not compare these entries'
complete -c NerixHost -n '__nerix_is compare' -s a -l all -d 'Also list entries below'
complete -c NerixHost -n '__nerix_is compare' -s s -l summary -d 'Print only counts'
complete -c NerixHost -n '__nerix_is compare' -l color -xa 'auto always never' -d 'Colour the output'

complete -c NerixHost -n '__nerix_is scan' -s l -l log -r -d 'Write a record for each entry'
complete -c NerixHost -n '__nerix_is scan' -s d -l details -d 'Also record facts'
complete -c NerixHost -n '__nerix_is scan' -l as -r -d 'Path under which the tree is hashed'
complete -c NerixHost -n '__nerix_is scan' -s k -l keep-going -d 'Go on after errors'
complete -c NerixHost -n '__nerix_is scan' -s e -l expect -x -d 'Fail unless the value is this'

complete -c NerixHost -n '__nerix_is settings; and not contains get (commandline -opc)' -fa 'list get watch'
complete -c NerixHost -n '__nerix_is settings; and contains get (commandline -opc)' \
    -fa '(NerixHost settings list 2>/dev/null | string replace -r " = .*" "")'

complete -c NerixVerifierHash -s P -l path -r -d 'Path to scan'
complete -c NerixVerifierHash -s H -l hash -xa '(__nerix_methods)' -d 'Hash method'
complete -c NerixVerifierHash -s h -l help -d 'Print the help'
