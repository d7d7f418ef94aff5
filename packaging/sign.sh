#!/bin/bash
# Signs the Windows programs with a certificate of one's own: sign.sh CERTIFICATE KEY. The signed ones go to
# dist/signed/; those in dist/ keep their reproducible bytes.
#   CERTIFICATE  PEM, the signer's first, then those between it and the root
#   KEY          PEM; PASSWORD_FILE names the file with its password, if it has one
#   TIMESTAMP    address of an RFC 3161 time stamp service; without it the signature ends with the certificate
set -euo pipefail
certificate=${1:-} key=${2:-}
if [ ! -r "$certificate" ] || [ ! -r "$key" ]; then
    echo "usage: make sign CERT=certificate.pem KEY=key.pem [TIMESTAMP=address] [PASSWORD_FILE=file]" >&2
    exit 2
fi
certificate=$(realpath "$certificate") key=$(realpath "$key")
cd "$(dirname "$0")/.."

options=(-certs "$certificate" -key "$key" -h sha256 -n "ZR Series Installer")
[ -z "${PASSWORD_FILE:-}" ] || options+=(-readpass "$PASSWORD_FILE")
[ -z "${TIMESTAMP:-}" ] || options+=(-ts "$TIMESTAMP")

mkdir -p dist/signed
for program in trk_setup.exe trk_setup64.exe; do
    rm -f "dist/signed/$program"
    osslsigncode sign "${options[@]}" -in "dist/$program" -out "dist/signed/$program" >/dev/null
    # The file's digest must agree with the signature and the signer must be the one given; whether users' machines
    # trust its root only they can tell.
    osslsigncode verify -CAfile "$certificate" -in "dist/signed/$program" >build/verify.log 2>&1 || {
        cat build/verify.log >&2
        exit 1
    }
    echo "dist/signed/$program"
done
