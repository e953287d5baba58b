# What JSON cannot say as a text: other bytes than UTF-8, elements left open, what is left out.
"$TQLABEL" inspect --json "$TQLABEL_DATA/cli/hostile_texts.der" >hostile
"$TQLABEL" inspect --json --offsets "$TQLABEL_DATA/cli/11.der" >plain
python3 - <<'PYTHON'
import json
hostile, plain = (json.load(open(name)) for name in ("hostile", "plain"))
body = hostile["body"]
print(hostile["head"]["label"], body["fileCreator"]["creatorStr2"], body["fileCreator"]["creatorTime"])
print(body["stamp"]["sealInfo"]["metaInfo"]["metaElement"], body["logs"], hostile["padding"])
print(plain["head"]["issuer"][2], plain["head"]["headSign"]["algorithm"], plain["head"]["encryptHead"])
print(plain["body"]["bodyEnvelopes"][0]["privilege"], plain["body"]["extends"])
print(plain["notes"]["shape"], plain["notes"]["behind"], plain["notes"]["offsets"][8])
PYTHON
