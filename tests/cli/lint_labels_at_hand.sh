cd "$TQLABEL_DATA/cli" || exit
for label in 11 111_padded 112 11_padded_encrypted 60 hostile_texts broken_body no_body unknown_version; do
  "$TQLABEL" lint $label.der || echo "status $?"
done
