#!/usr/bin/env bash
# Rewrites murcoredata/murcoredata.h to include every public header of the package.
# A header whose first lines say "internal" is left out, and so is a fragment without
# "#pragma once" (an X-macro table meant to be included by its owner only). Run it after adding a header;
# with --check it only says whether the file is up to date (a ctest test runs that).
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
generate() {
  echo '#pragma once'
  echo
  echo '// Every public header of the package, for consumers that want all of it.'
  echo '// Written by tools/update-umbrella.sh; a test checks that it stays complete.'
  echo
  for d in foundation core data parser string utility formalism; do
    for h in murcoredata/$d/*.h; do
      [ -e "$h" ] || continue
      case "$h" in *_test.h) continue ;; esac
      head -5 "$h" | grep -qi 'internal' && continue
      grep -q '^#pragma once' "$h" || continue
      echo "#include \"$h\""
    done
  done
  echo '#include "murcoredata/gen-strings/StringIds.h"'
  for h in murgeo/*.h; do
    head -5 "$h" | grep -qi 'internal' && continue
    echo "#include \"$h\""
  done
}
if [ "${1:-}" = --check ]; then
  if ! diff <(generate) murcoredata/murcoredata.h; then
    echo "murcoredata/murcoredata.h is out of date: run tools/update-umbrella.sh" >&2
    exit 1
  fi
  exit 0
fi
generate > murcoredata/murcoredata.h
