#!/usr/bin/env bash
# Starts the program; on a machine without a display says so in one line.
set -euo pipefail
binary="$1"
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ] && [ -z "${QT_QPA_PLATFORM:-}" ]; then
  echo "화면(디스플레이)이 없는 환경입니다: 누벨라를 띄울 수 없습니다. (no display: set DISPLAY, or QT_QPA_PLATFORM=offscreen)" >&2
  exit 1
fi
exec "$binary"
