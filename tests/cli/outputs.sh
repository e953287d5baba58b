# An output that cannot be written is a failure, and nothing is left of it.
label=$TQLABEL_DATA/cli/112.der
"$TQLABEL" inspect --json "$label" >json
"$TQLABEL" new json -o missing/out || echo "status $?" >&2
"$TQLABEL" new json -o /dev/full || echo "status $?" >&2
"$TQLABEL" new json -o - >/dev/full || echo "status $?" >&2
"$TQLABEL" inspect "$label" >/dev/full || echo "status $?" >&2
for i in $(seq 200); do echo "$label"; done | xargs "$TQLABEL" inspect 2>broken | true
cat broken >&2
(ulimit -f 1; trap '' XFSZ; "$TQLABEL" edit "$label" --set padding=100000 -o out) || echo "status $?" >&2
(umask 077; "$TQLABEL" new json -o private)
stat -c %a private
chmod 640 private
"$TQLABEL" new json -o private
stat -c %a private
ls -A
