# Whatever decodes comes back from its JSON as it was.
for label in "$TQLABEL_DATA"/cli/*.der; do
  "$TQLABEL" inspect --json "$label" >json 2>/dev/null || continue
  "$TQLABEL" new json -o made
  cmp -n "$(stat -c %s made)" "$label" made
  basename "$label"
done
