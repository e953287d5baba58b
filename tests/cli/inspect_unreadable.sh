name=$(printf 'no\033[31mfile')
"$TQLABEL" inspect "$name" || echo "status $?"
"$TQLABEL" inspect . || echo "status $?"
"$TQLABEL" inspect "$TQLABEL_DATA/cli/60.der" >/dev/full || echo "status $?"
