# Completes the tool's commands, options, files and folders in bash. Needs nothing but bash itself.
# shellcheck shell=bash

# The folders that begin with $1, and the files that begin with it and match one of the other
# arguments, which are patterns.
_marlune_files() {
  local word=$1 pattern
  shift
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(
    compgen -d -- "$word"
    for pattern in "$@"; do compgen -f -X "!$pattern" -- "$word"; done
  )
}

_marlune() {
  local word=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]} words=''
  # bash splits "--trace=raw" into three words.
  case $word in
    =) word='' option+='=' ;;
    *) [[ $option != = ]] || option="${COMP_WORDS[COMP_CWORD - 2]}=" ;;
  esac
  COMPREPLY=()
  case $option in
    --grammar | --grammar= | --overrides | --overrides=) _marlune_files "$word" '*.plist' ;;
    --output | --output=) _marlune_files "$word" '*.wav' '*.aif' ;;
    --sounds | --sounds=) _marlune_files "$word" ;;
    --trace=) words='rules raw' ;;
    *=) ;;
    --name | --why) ;;  # needs the grammar
    *)
      [[ $COMP_CWORD == 1 || $word == -* ]] || return
      case $((COMP_CWORD > 1)):${COMP_WORDS[1]} in
        0:*) words='rewrite decompose say --help --version' ;;
        1:rewrite) words='--help --grammar --name --trace --why --verbose' ;;
        1:decompose) words='--help --sounds --overrides --verbose' ;;
        1:say) words='--help --sounds --grammar --name --overrides --output --verbose' ;;
      esac
      ;;
  esac
  [[ -z $words ]] || mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}

complete -F _marlune marlune
