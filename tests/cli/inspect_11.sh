"$TQLABEL" inspect "$TQLABEL_DATA/cli/11.der"
