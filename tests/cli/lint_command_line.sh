try() { "$TQLABEL" lint "$@" || echo "status $?"; }
cp "$TQLABEL_DATA"/cli/lint/{clean,TQ002,TQ024}.der .
try clean.der missing TQ024.der
try TQ002.der missing
try --json - <TQ024.der
try --json --explain TQ005
try --color always TQ024.der
try --explain TQ005
try --explain TQ999
for arguments in "" "--explain TQ005 clean.der"; do
  # shellcheck disable=SC2086  # no argument at all is one of the cases
  try $arguments 2>output
  test -s output
done
"$TQLABEL" lint --json "$TQLABEL_DATA/cli/lint/many.der" | tail -n 9 | sed 's|"/.*/|"|'
# Every byte of a label, changed: whatever comes of it, the program ends as it says.
for at in $(seq 0 7 800); do
  { head -c "$at" clean.der && printf '\377' && tail -c "+$((at + 2))" clean.der; } >changed
  status=0
  "$TQLABEL" lint changed >output || status=$?
  case $status in
    0) [ ! -s output ] ;;
    1) [ -s output ] ;;
    4) [ "$(wc -l <output)" -eq 1 ] ;;
    *) echo "status $status with byte $at changed" ;;
  esac
done
