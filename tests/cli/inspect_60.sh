"$TQLABEL" inspect "$TQLABEL_DATA/cli/60.der"
