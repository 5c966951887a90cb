#!/usr/bin/env bash
# A tour of the library through its command-line tool. Each step says what it shows.
# Run it with ./run demo, which builds the tool and sets MURCOREDATA.
set -uo pipefail
tool="${MURCOREDATA:-murcoredata}"
here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"

step() { printf '\n== %s\n' "$1"; }
show() { printf '$ murcoredata %s\n' "$*"; "$tool" "$@"; printf '(exit %d)\n' $?; }

# Every part of the tour lives in demo.d/, one file a subject, run in name order.
for part in "$here"/demo.d/*.sh; do
  # shellcheck source=/dev/null
  . "$part"
done
