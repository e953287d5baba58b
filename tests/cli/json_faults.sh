# Each says where it is, and leaves what stands in the place of the output alone.
cp "$TQLABEL_DATA/cli/112.der" label
cp "$TQLABEL_DATA/cli/11_padded_encrypted.der" followed
cp "$TQLABEL_DATA/cli/broken_body.der" broken
echo old >out
try() { "$TQLABEL" "$@" -o out || echo "status $?" >&2; }
"$TQLABEL" inspect --json label >json
changed() { sed "$1" json >changed && try new changed; }
changed 's/"mode": 0/"mode": -1/'
changed 's/"mode": 0/"mode": 1e999/'
changed 's/"mode": 0/"modes": 0/'
changed 's/"mode": 0/"mode": 0, "more": 0/'
changed 's/"mode": 0/"mode": 0, "mode": 0/'
changed 's/"2023-11-14T22:13:20Z"/"2023-11-31T22:13:20Z"/'
changed 's/"1.1.2"/"1.1.9"/'
changed 's/"tag": "IA5String"/"tag": "NumericString"/'
changed 's/"extends": null/"extends": [{"der": "0500"}]/'
changed 's/label.1"/label\/2"/'
changed '$d'
head -c 100000 /dev/zero | tr '\0' '[' >deep
try new deep
try edit label --set head.labl=public
try edit label --set 'body.multiSign[3].algorithm=RSA'
try edit label --set head
try edit label --remove head.label
try edit label --add 'head.label="a"'
try edit followed --set head.label=public
try edit broken --set head.label=public
cmp out - <<<old
