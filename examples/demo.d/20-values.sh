# Values: the sixteen-byte tagged cell, its literal form and its hash.
step "Numbers, booleans and NULL: type, literal, the sixteen bytes and the hash"
while read -r literal; do
  show value "$literal"
done < "$here/data/values.txt"

step "A special is a special of a type: a null integer and a null string differ in their type byte and hash"
while read -r keyword type; do
  show value "$keyword" "$type"
done < "$here/data/value-specials.txt"

step "A null real hashes like 0.0: only the type byte and the payload of a real are hashed"
show value 0.0

step "An integer never equals a real: 1 and 1.0 differ in type, bytes and hash"
show value 1
show value 1.0

step "Text that is no value, a number out of range, a tuple special, an unknown type: a message and exit code 1"
while read -r text type; do
  if [ -n "$type" ]; then show value "$text" "$type"; else show value "$text"; fi
done < "$here/data/bad-values.txt"
