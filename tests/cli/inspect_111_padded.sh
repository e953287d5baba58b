"$TQLABEL" inspect "$TQLABEL_DATA/cli/111_padded.der"
