# Qualified names: paths of components in bracket form, [a].[b], with "]" doubled inside.
step "Qualified names: components, bracket form and hash, or the parse failure (exit 1)"
while IFS= read -r text; do
  show qname "$text"
done < "$here/data/qnames.txt"

step "The two empty names: no components (the empty text) and one empty component"
show qname ""
show qname "[]"

step "Inside the brackets nothing is trimmed; control characters show as \\uXXXX"
show qname "$(printf '[ tab\there ].[x]')"
