# Collation: how strings compare. A collator name spells a locale and its attributes; the
# same two texts compare differently under different names, and equal texts hash alike.
step "Canonical collator names from locales, options and locale ids"
grep -v '^#' "$here/data/collator-options.txt" | while read -r line; do
  # shellcheck disable=SC2086
  show collator $line
done

step "One pair of texts under several collations (result, and the hash of each side)"
grep -v '^#' "$here/data/collation-pairs.txt" | while IFS='|' read -r name a b; do
  show compare --collation "$name" "$a" "$b"
done

step "A name is canonicalised before use: parts sorted, the last of a letter kept"
show compare --collation RUS_S2_LEN Apple apple

step "Case-first options write a C part, which no pool can read: a defined failure"
show collator en_US --case=upper
show compare --collation LEN_RUS_Q1 a b

step "A doubled \"_\" is an empty part, which the name writer refuses"
show compare --collation LEN__RUS a b
