#!/usr/bin/env bash
# Installs the built program into a temporary prefix and checks that the desktop finds it: the
# binary, a valid Korean desktop entry and the icon in their standard places.
set -euo pipefail
build_dir="$1"
prefix="$(mktemp -d)"
trap 'rm -rf "$prefix"' EXIT
cmake --install "$build_dir" --prefix "$prefix" > /dev/null
fail() { echo "FAIL: $*"; exit 1; }
[ -x "$prefix/bin/nubella" ] || fail "no bin/nubella"
desktop="$prefix/share/applications/nubella.desktop"
[ -f "$desktop" ] || fail "no desktop entry"
[ -f "$prefix/share/icons/hicolor/scalable/apps/nubella.svg" ] || fail "no icon"
desktop-file-validate "$desktop" || fail "desktop entry does not validate"
grep -qx 'Name=누벨라' "$desktop" || fail "the entry is not named 누벨라"
grep -qx 'Icon=nubella' "$desktop" || fail "the entry names another icon"
grep -q '^Categories=Office;' "$desktop" || fail "not among the office programs"
echo "1 passed, 0 failed"
