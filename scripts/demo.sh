#!/usr/bin/env bash
# The demonstration run: starts the engine on the built data directory and
# shows what it loaded. Usage: scripts/demo.sh BUILD_DIR
set -euo pipefail
build=${1:-build}
echo "== tarvos info (engine start on the default data directory)"
"$build/cli/tarvos" info --data "$build/data"
