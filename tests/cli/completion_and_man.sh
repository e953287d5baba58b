# Both come from the definitions that parse the command line.
answer() {
  COMP_WORDS=(tqlabel "$@")
  COMP_CWORD=$#
  _tqlabel 2>/dev/null # compopt complains outside of a completion
  echo "${COMPREPLY[*]}"
}
compopt() { :; }
source <("$TQLABEL" completion bash)
answer ins
answer edit --re
answer --col
answer inspect file
"$TQLABEL" completion zsh | grep -e "edit) _arguments" -e "'edit:"
"$TQLABEL" completion fish | grep -e "-a edit" -e "from edit' -l remove"
"$TQLABEL" man edit | grep -A1 -e '^.TH' -e 'remove'
"$TQLABEL" man nothing || echo "status $?"
"$TQLABEL" completion ksh 2>/dev/null || echo "status $?"
