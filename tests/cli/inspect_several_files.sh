# The worst status wins wherever it stands, and what can be shown is shown.
cp "$TQLABEL_DATA/cli/11_padded_encrypted.der" good
cp "$TQLABEL_DATA/cli/broken_body.der" bad
"$TQLABEL" inspect bad missing - <good >output || echo "status $?"
grep '^ \{0,2\}[^ ]' output
"$TQLABEL" inspect missing good >output || echo "status $?"
# Who waits at a terminal sees how far it has come, and no one else does.
script -qec '"$TQLABEL" inspect good missing good >output' typescript >shown </dev/null || echo "status $?"
tr '\r' '\n' <shown | sed 's/\x1b\[K//'
