#!/usr/bin/env bash
# The version is written in kzoci/version.h: the header's macros, the build, the command, the
# packages, the extension for editors and the list of changes have the same.
#   version.sh PROJECT KZTNS BUILT_VERSION C_COMPILER [FLAG...]
set -euo pipefail
project=$1 kztns=$2 built=$3 cc=$4
shift 4
failed=0

# is WHAT ACTUAL
is() {
  [ "$2" = "$version" ] || { echo "version $version, but $1: $2"; failed=1; }
}

macro() { sed -n "s/^#define KZOCI_VERSION_$1 \([0-9]*\)$/\1/p" "$project/kzoci/version.h"; }
major=$(macro MAJOR) minor=$(macro MINOR) patch=$(macro PATCH)
version=$major.$minor.$patch
[[ $version =~ ^[0-9]+\.[0-9]+\.[0-9]+$ ]] || { echo "no version in kzoci/version.h: $version"; exit 1; }

expand() { echo "$2" | "$cc" "${@:3}" -I"$project" -include "$project/kzoci/$1" -E -P -x c - | tail -n 1; }
is "KZOCI_VERSION" "$(expand oci_tnsname.h KZOCI_VERSION "$@" | tr -d '" ')"
number=$(expand version.h KZOCI_VERSION_NUMBER "$@")
[ $((number)) -eq $((major * 10000 + minor * 100 + patch)) ] ||
  { echo "KZOCI_VERSION_NUMBER: $number"; failed=1; }
is "the build" "$built"
is "kztns --version" "$("$kztns" --version | sed 's/^kztns //')"
is "kztns check --format sarif" "$("$kztns" check --format sarif /dev/null |
  sed -n '/"driver"/,$ s/^ *"version": "\(.*\)",$/\1/p')"
is "packaging/debian/changelog" "$(sed -nE '1 s/^kzoci \((.*)-[0-9]+\) .*/\1/p' "$project/packaging/debian/changelog")"
is "editors/vscode/package.json" "$(sed -nE 's/^  "version": "(.*)",$/\1/p' "$project/editors/vscode/package.json")"
is "web/package.json" "$(sed -nE 's/^  "version": "(.*)",$/\1/p' "$project/web/package.json")"
is "docs/editors.md" "$(sed -nE 's/.*kztns-([0-9.]+)\.vsix.*/\1/p' "$project/docs/editors.md" | sort -u)"
is "CHANGELOG.md" "$(sed -nE 's/^## \[([0-9].*)\]$/\1/p' "$project/CHANGELOG.md" | head -n 1)"
exit $failed
