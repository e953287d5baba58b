"$TQLABEL" inspect "$TQLABEL_DATA/cli/112.der"
