#!/usr/bin/env bash
# Makes real certificates and with them one label of each version in each shape, and shows two; then
# seals a document for two of three people.
# usage: demo.sh BUILD_DIR   (a build with the tool and the examples)
set -Eeuo pipefail
shopt -s inherit_errexit
trap 'echo "demo.sh: line $LINENO failed" >&2' ERR

build=$(realpath "$1")
document=$(realpath "$(dirname "$0")/../README.md")
tool=$build/bin/tqlabel
make_label=$build/bin/example_make_label
finish_label=$build/bin/example_finish_label
out=$build/demo
rm -rf "$out"
mkdir -p "$out"
cd "$out"

signers=(rsa2048 rsa4096 sm2)
declare -A key_options=(
  [rsa2048]="-algorithm RSA -pkeyopt rsa_keygen_bits:2048"
  [rsa4096]="-algorithm RSA -pkeyopt rsa_keygen_bits:4096"
  [sm2]="-algorithm SM2"
)
declare -A digests=([rsa2048]=sha256 [rsa4096]=sha256 [sm2]=sm3)
declare -A algorithms=([rsa2048]=sha256WithRSAEncryption [rsa4096]=sha256WithRSAEncryption
  [sm2]=sm3WithSM2Encryption)
# SM2 signs under the identity of the signer; this is the usual one.
declare -A sign_options=([rsa2048]="" [rsa4096]="" [sm2]="-pkeyopt distid:1234567812345678")

make_certificate() {
  local name=$1 id=()
  [ "$name" != sm2 ] || id=(-sigopt distid:1234567812345678)
  # shellcheck disable=SC2086  # several words each, here and below
  openssl genpkey ${key_options[$name]} -out "$name.key" 2>genpkey.log ||
    { cat genpkey.log >&2 && return 1; } # in case of success the log holds dots alone
  openssl req -x509 -new -key "$name.key" "-${digests[$name]}" "${id[@]}" -days 365 \
    -subj "/C=XX/O=Example Office/CN=Signer $name" -outform DER -out "$name.cer"
}

# hex_to_bytes: hexadecimal digits on standard input to bytes
hex_to_bytes() {
  local digits
  read -r digits
  # shellcheck disable=SC2001,SC2059  # escapes are what the format is for
  printf "$(sed 's/../\\x&/g' <<<"$digits")"
}

# sign NAME FILE OUT: signs a file and verifies the signature
sign() {
  local options="-inkey $1.key -rawin -digest ${digests[$1]} ${sign_options[$1]}"
  # shellcheck disable=SC2086
  openssl pkeyutl -sign $options -in "$2" -out "$3.der"
  # shellcheck disable=SC2086
  openssl pkeyutl -verify $options -in "$2" -sigfile "$3.der" >/dev/null
  if [ "$1" = sm2 ]; then # a label holds the two numbers of such a signature, 32 bytes each
    openssl asn1parse -inform DER -in "$3.der" |
      sed -n 's/.*INTEGER *://p' | while read -r number; do
        printf '%64s' "$number" | tr ' ' 0
      done | { cat; echo; } | hex_to_bytes >"$3"
  else
    mv "$3.der" "$3"
  fi
}

# build_label NAME VERSION SHAPE
build_label() {
  local name=$1 version=$2 shape=$3 label=$2-$3.label serial issuer cipher=- padding=0 sealed=()
  serial=$(openssl x509 -in "$name.cer" -inform DER -noout -serial)
  mapfile -t issuer < <(openssl x509 -in "$name.cer" -inform DER -noout -issuer \
    -nameopt sname,sep_multiline,utf8 | sed -n 's/^ \+//p')
  case $shape in *encrypted) cipher=AES.256.CBC ;; esac
  case $shape in padded*) padding=256 ;; esac
  "$make_label" "$version" "$cipher" "${algorithms[$name]}" "$name.cer" "${serial#serial=}" \
    "$name.file-signature" "$label" "${issuer[@]}"
  sign "$name" "$label.message" "$label.signature"
  if [ "$cipher" != - ]; then
    openssl enc -aes-256-cbc -K "$file_key" -iv "$file_iv" -in "$label.body" -out "$label.sealed"
    sealed=("$label.sealed")
  fi
  printf '%-8s%-18s%-9s' "$version" "$shape" "$name"
  "$finish_label" "$label" "$label.signature" "$padding" "$label" "${sealed[@]}"
  openssl asn1parse -inform DER -in "$label" >/dev/null
  "$tool" inspect "$label" >"$label.txt"
  grep -qx "shape: ${shape/-/ }" "$label.txt"
}

echo "Certificates:"
printf 'The contents of a protected file.\n' >file
file_key=$(openssl rand -hex 32)
file_iv=$(openssl rand -hex 16)
for name in "${signers[@]}"; do
  make_certificate "$name"
  sign "$name" file "$name.file-signature"
  printf '  %-9s' "$name"
  openssl x509 -in "$name.cer" -inform DER -noout -serial
done

echo
echo "Labels, with the signer of each:"
made=0
for version in 6.0 1.1 1.1.1 1.1.2; do
  for shape in plain padded encrypted padded-encrypted; do
    build_label "${signers[made % 3]}" "$version" "$shape"
    made=$((made + 1))
  done
done
rm -f genpkey.log ./*.message ./*.body ./*.signature ./*.der ./*.sealed

for label in 6.0-plain.label 1.1.2-padded-encrypted.label; do
  echo
  echo "\$ tqlabel inspect $label"
  cat "$label.txt"
done
echo
echo "$made labels lie in $out, each with what tqlabel inspect says of it in .txt"

# show STATUS COMMAND...: the command as a person would type it, what it says, and its exit status,
# which must be the one that is expected
show() {
  local status=0
  printf '\n$ %s\n' "${*:2}"
  PATH=$build/bin:$PATH "${@:2}" 2>&1 || status=$?
  if [ "$status" -ne 0 ]; then echo "(exit status $status)"; fi
  [ "$status" -eq "$1" ]
}

echo
echo "A document for two of the three, who are rsa2048, rsa4096 and sm2:"
cp "$document" document
show 0 tqlabel protect document -o document.sealed --to rsa4096.cer sm2.cer \
  --sign rsa2048.key,rsa2048.cer --title "What tqlabel is" --privilege print reads=3
show 0 tqlabel inspect document.sealed
show 0 tqlabel check document.sealed --as sm2.cer --key sm2.key
show 0 tqlabel open document.sealed --key sm2.key --cert sm2.cer -o opened
show 0 cmp document opened
show 5 tqlabel open document.sealed --key rsa2048.key --cert rsa2048.cer -o refused
show 0 tqlabel log list document.sealed --key rsa4096.key --cert rsa4096.cer
show 0 tqlabel recipients list document.sealed --key rsa4096.key --cert rsa4096.cer
show 0 tqlabel verify document.sealed --trust rsa2048.cer --key sm2.key --cert sm2.cer
