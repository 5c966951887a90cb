# The string table: every message of the library has an id, a key and an English text.
step "A message of the string table, by id (hex or decimal)"
while read -r id; do
  show string "$id"
done < "$here/data/string-ids.txt"

step "An id that is not in the table gives the empty text"
show string 0x12345678

step "Error records: each failure site has a code and a name"
while read -r code; do
  show error "$code"
done < "$here/data/error-codes.txt"
