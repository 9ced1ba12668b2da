# Bash completion of quillon-consent. It queries the program, so it is never out of date.
_quillon_consent() {
  local word=${COMP_WORDS[COMP_CWORD]} command=${COMP_WORDS[1]-} words=
  if [ "$COMP_CWORD" = 1 ]; then
    words="$(quillon-consent --help 2>/dev/null | sed -n '/^Subcommands:/,$s/^  \([a-z][a-z-]*\).*/\1/p') --help --version"
  elif [[ $word == -* ]]; then
    words=$(quillon-consent "$command" --help 2>/dev/null | grep -oE -- '--[a-z][a-z-]*')
  fi
  mapfile -t COMPREPLY < <(if [ -n "$words" ]; then compgen -W "$words" -- "$word"; else compgen -f -- "$word"; fi)
}
complete -o filenames -F _quillon_consent quillon-consent
