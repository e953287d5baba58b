"$TQLABEL" --version
"$TQLABEL" --help
"$TQLABEL" inspect --help
