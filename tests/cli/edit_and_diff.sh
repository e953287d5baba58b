# Entries are matched by what they are about, wherever they stand.
cp "$TQLABEL_DATA/cli/11.der" before
"$TQLABEL" edit before -o after --set head.label=public --set body.content.fileType=7 \
  --set body.content.destroyTime=2030-01-01 --set body.content.modifyTime=null \
  --set 'body.logs[1].logText1=closed' --set padding=300 --remove 'body.extends[1]' \
  --add 'body.extends={"extendType":5,"extendValue":"cafe"}' \
  --add 'body.bodyEnvelopes={"envelope":{"issuer":[{"type":"CN","tag":"PrintableString","value":"A"}],"serial":"02","algorithm":"RSA","encryptedKey":{"der":"040101"}},"privilege":{"priSubject":{"der":"3000"},"priFlag1":true,"priValue1":0,"readCount":0,"priFlag2":true,"priFlag3":false,"priFlag4":false,"priValue3":0,"priValue4":0,"extPriList":null}}'
"$TQLABEL" diff before after || echo "status $?"
"$TQLABEL" diff --json before after | python3 -c 'import json, sys
changes = json.load(sys.stdin)["changes"]; print(len(changes), changes[-1])'
"$TQLABEL" diff before before
"$TQLABEL" edit after --set 'head.label=secret' -o - | "$TQLABEL" diff after - || echo "status $?"
# The head signature covers head and body, and not the padding.
cp "$TQLABEL_DATA/cli/60.der" signed
"$TQLABEL" edit signed --set padding=300 -o padded
"$TQLABEL" diff signed padded || echo "status $?"
"$TQLABEL" edit padded --set body.content.secrecy=9 -o changed
"$TQLABEL" diff padded changed || echo "status $?"
"$TQLABEL" edit changed --set head.headSign.value=00 -o signed_again
"$TQLABEL" diff changed signed_again || echo "status $?"
# A body signature covers those before it.
cp "$TQLABEL_DATA/cli/112.der" first
"$TQLABEL" edit first --set 'body.multiSign[1].value=00' -o second
"$TQLABEL" diff first second | grep signature
"$TQLABEL" edit first --set 'body.multiSign[2].value=00' -o second
"$TQLABEL" diff first second | grep signature
"$TQLABEL" edit first --remove 'body.multiSign[1]' -o second
"$TQLABEL" diff --json first second | tail -5
