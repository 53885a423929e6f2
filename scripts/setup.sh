#!/usr/bin/env bash
# Sets up a fresh Debian machine: packages, build into build/, sample catalogue,
# empty application database.
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(
    build-essential cmake ninja-build pkg-config git
    qtbase5-dev libqt5serialbus5-dev libqt5serialport5-dev libqt5xml5 libqt5sql5 libqt5sql5-sqlite
    libsqlcipher-dev sqlcipher sqlite3
    python3 python3-pymodbus python3-serial python3-serial-asyncio mbpoll socat iproute2 procps
    libmodbus-dev
    libmicrohttpd-dev chromium python3-websocket curl
)

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
    sudo=""
    [ "$(id -u)" -eq 0 ] || sudo="sudo"
    $sudo apt-get update
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y --no-install-recommends "${missing[@]}"
fi

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build -j "$(nproc)"

if [ -x scripts/make-sample-catalogue.sh ]; then
    scripts/make-sample-catalogue.sh
fi
if [ -x scripts/make-application-database.sh ]; then
    scripts/make-application-database.sh
fi
