#compdef NerixHost NerixVerifierHash
# Completes the commands and options of NerixHost and NerixVerifierHash in zsh.

_nerix_methods() {
  local -a methods=(${=$(NerixVerifierHash --help 2>/dev/null | sed -n 's/.*one of: \([^.]*\).*/\1/p')})
  compadd -a methods
}

_nerix_settings() {
  local -a keys=(${(f)"$(NerixHost settings list 2>/dev/null | sed 's/ = .*//')"})
  compadd -a keys
}

if [[ $service == NerixVerifierHash ]]; then
  _arguments '(-P --path)'{-P,--path}'[path to scan]:path:_files' \
    '(-H --hash)'{-H,--hash}'[hash method]:method:_nerix_methods' '(-h --help)'{-h,--help}'[print the help]'
  return
fi

local -a common=('(-h --help)'{-h,--help}'[print the help]')
if (( CURRENT == 2 )); then
  _values command 'compare[list what differs between two trees or scan logs]' 'scan[print the value of a tree]' \
    'settings[show settings, or watch a running NerixVerifierHash]' --help --version
  return
fi
local command=$words[2]
shift words
(( CURRENT-- ))
case $command in
  compare)
    _arguments $common '*'{-i,--ignore}'[do not compare these facts]:facts:_values -s , fact kind content attributes target owner group links mode size' \
      '*'{-x,--exclude}'[do not compare these entries]:pattern:' '(-a --all)'{-a,--all}'[also list entries below]' \
      '(-s --summary)'{-s,--summary}'[print only counts]' '--json[print JSON]' '--color[colour]:when:(auto always never)' \
      '(-H --hash)'{-H,--hash}'[hash method]:method:_nerix_methods' '(-q --quiet)'{-q,--quiet}'[show no progress]' \
      '1:before:_files' '2:after:_files'
    ;;
  scan)
    _arguments $common '(-H --hash)'{-H,--hash}'[hash method]:method:_nerix_methods' \
      '(-l --log)'{-l,--log}'[write a record for each entry]:file:_files' '(-d --details)'{-d,--details}'[also record facts]' \
      '--as[path under which the tree is hashed]:path:_files' '(-k --keep-going)'{-k,--keep-going}'[go on after errors]' \
      '--json[print JSON]' '(-e --expect)'{-e,--expect}'[fail unless the value is this]:value:' \
      '(-q --quiet)'{-q,--quiet}'[show no progress]' '*:path:_files'
    ;;
  settings)
    _arguments $common '--json[print JSON]' '1:action:(list get watch)' '2:key:_nerix_settings'
    ;;
esac
