#!/bin/sh
# Writes what the tool says of itself, laid out as below PREFIX/share.
# usage: tool_files.sh TOOL SHARE ZSH_DIR
set -eu
tool=$1
share=$2
zsh=$share/$3
bash=$share/bash-completion/completions
fish=$share/fish/vendor_completions.d
man=$share/man/man1

rm -rf "$share"
mkdir -p "$bash" "$fish" "$zsh" "$man"
"$tool" completion bash >"$bash/tqlabel"
"$tool" completion fish >"$fish/tqlabel.fish"
"$tool" completion zsh >"$zsh/_tqlabel"

"$tool" man >"$man/tqlabel.1"
sed -n '/^\.SH COMMANDS/,/^\.SH OPTIONS/{s/\\//g;s/^\.B //p;}' "$man/tqlabel.1" |
  while read -r command; do
    "$tool" man "$command" >"$man/tqlabel-$command.1"
  done
gzip -9n "$man"/*.1
