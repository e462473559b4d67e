#!/usr/bin/env bash
# Installs the Debian packages the engine builds against, skipping those
# already present. Runs as root, or through sudo when that is available.
set -euo pipefail

PACKAGES=(
  build-essential cmake pkg-config
  libjsoncpp-dev
  zlib1g-dev libminizip-dev
  libcurl4-openssl-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  libcli11-dev
  python3-jieba
  libuchardet-dev
  libicu-dev
  libime-data-language-model libimecore-dev libfcitx5utils-dev
  binutils
  clang libclang-rt-14-dev
  bc unzip
  dpkg-dev lintian
)

missing=()
for p in "${PACKAGES[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  echo "install-deps: all ${#PACKAGES[@]} packages present"
  exit 0
fi

SUDO=""
if [ "$(id -u)" -ne 0 ]; then
  if command -v sudo >/dev/null 2>&1; then
    SUDO="sudo"
  else
    echo "install-deps: missing ${missing[*]}; run as root or install sudo" >&2
    exit 1
  fi
fi

echo "install-deps: installing ${missing[*]}"
$SUDO env DEBIAN_FRONTEND=noninteractive apt-get update -qq
$SUDO env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
