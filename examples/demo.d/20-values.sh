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

step "Strings, dates, times, tuples and shapes: the objects a value holds (an object's address is not shown)"
grep -v '^# ' "$here/data/object-values.txt" | while IFS='|' read -r literal second; do
  if [ -n "$second" ]; then show value "$literal" "$second"; else show value "$literal"; fi
done

step "A string hashes under its collation: \"Café\" and \"CAFÉ\" hash alike case-insensitively, apart in binary order"
show value '"Café"' LEN_RUS_S2
show value '"CAFÉ"' LEN_RUS_S2
show value '"Café"' binary
show value '"CAFÉ"' binary

step "A tuple hashes its members in order: (1, 2) and (2, 1) differ; the empty tuple hashes to 0xDEADBEEF"
show value '(1, 2)'
show value '(2, 1)'

step "Unclosed quotes, impossible dates and times, broken tuples and shapes: a message and exit code 1"
grep -v '^# ' "$here/data/bad-object-values.txt" | while IFS='|' read -r literal second; do
  if [ -n "$second" ]; then show value "$literal" "$second"; else show value "$literal"; fi
done
