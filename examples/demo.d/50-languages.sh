# Language codes: every form of a code, and the chains that lead any code to a language the
# application ships in. Bad codes fall to "en_US-US"; nothing fails.
step "A language code in all its forms, and the way down its fallback chains"
while read -r code; do
  show lang "$code"
done < "$here/data/languages.txt"

step "Several codes at once: a bare language, a regional one with a special row, the empty code"
show lang fr es_MX ""
