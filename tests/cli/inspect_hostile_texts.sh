"$TQLABEL" inspect "$TQLABEL_DATA/cli/hostile_texts.der"
