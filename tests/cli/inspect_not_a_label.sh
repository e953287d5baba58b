try() { "$TQLABEL" inspect "$@" || echo "status $?"; }
: >empty
printf 'hello' >text
head -c 700 "$TQLABEL_DATA/cli/60.der" >cut_short
cp "$TQLABEL_DATA"/cli/{no_body,unknown_version,broken_body}.der .
for file in empty text cut_short no_body.der unknown_version.der broken_body.der; do try $file; done
try /dev/zero
