for arguments in "" inspect frobnicate "inspect --frobnicate"; do
  # shellcheck disable=SC2086  # no argument at all is one of the cases
  "$TQLABEL" $arguments 2>output || echo "status $?"
  test -s output
done
