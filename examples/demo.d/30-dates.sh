# Dates: one 64-bit count of 1/10000 s ticks, read as a calendar date, an OLE date and an ISO week.
step "A date-time value and its readings"
while read -r text; do
  show date "$text"
done < "$here/data/dates.txt"

step "Text that is not a date, and fields that make no date, exit 1"
show date 2021-02-30
show date 1999-02-29
show date 0399-12-31
show date 2021-13-01
show date 2021-3-4x
show date yesterday
