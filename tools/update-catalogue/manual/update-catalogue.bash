# Completion for bash. The program itself says which commands and options there are.
_update_catalogue() {
  local word=${COMP_WORDS[COMP_CWORD]} words
  COMPREPLY=()
  if [[ $COMP_CWORD -eq 1 ]]; then
    words=$("$1" --help 2>/dev/null | sed -nE 's/^  ([a-z][a-z-]*) .*/\1/p')
    words+=" --help --version"
  elif [[ $word == -* ]]; then
    words=$("$1" "${COMP_WORDS[1]}" --help 2>/dev/null | grep -oE '^ +(-[a-z], )?--[a-z-]+' |
      grep -oE -- '--[a-z-]+')
  fi
  if [[ -n ${words:-} ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
  fi
}
# Anything else is a file.
complete -o default -F _update_catalogue update-catalogue
