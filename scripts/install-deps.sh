#!/usr/bin/env bash
# Installs the Debian packages the program needs to build, run and be tested.
# Only what is missing is installed; run as root or through sudo.
set -euo pipefail

packages=(
  cmake g++ make pkg-config ccache
  qt6-base-dev qt6-base-dev-tools libqt6sql6-sqlite qt6-translations-l10n libgl-dev
  fonts-nanum fonts-nanum-coding
  libxlsxwriter-dev poppler-utils sqlite3 xvfb libqt6svg6 desktop-file-utils unzip zip libzip-dev libsqlite3-dev
  openbox xdotool x11-utils x11-apps libxcb1-dev
  mdbtools mdbtools-dev
  libqt6sql6-psql postgresql postgresql-contrib libpq-dev
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "설치할 패키지: ${missing[*]}"
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
  sudo_cmd=(sudo)
fi
"${sudo_cmd[@]}" apt-get update -qq
DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y --no-install-recommends "${missing[@]}"
