"$TQLABEL" inspect "$TQLABEL_DATA/cli/11_padded_encrypted.der"
