# Each code has a page and a label that it alone is found in.
cp "$TQLABEL_DATA"/cli/lint/*.der .
"$TQLABEL" lint --explain all >pages
grep -o "^TQ[0-9]*" pages | while read -r code; do
  "$TQLABEL" lint "$code.der" >findings && echo "$code.der is clean"
  [ "$(cut -d ' ' -f 3 findings | sort -u)" = "$code" ] || echo "$code.der has other codes"
  size=$("$TQLABEL" lint --explain "$code" | tail -n +3 | wc -l)
  [ "$size" -ge 5 ] && [ "$size" -le 15 ] || echo "$code has a page of $size lines"
done
"$TQLABEL" lint clean.der
"$TQLABEL" lint TQ*.der elsewhere.der unlike.der || echo "status $?"
"$TQLABEL" lint many.der | tail -n 2
