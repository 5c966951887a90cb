# Text helpers: secrets masked before text goes to a log, quoted splitting, the hexadecimal
# form, and the two regular-expression engines.
step "Secrets in a log line are masked; the key comes out in upper case"
while IFS= read -r line; do
  show mask "$line"
done < "$here/data/secrets.txt"

step "Splitting skips a separator inside the first quoted run; an open quote is an error"
show split 'a,"b,c",d' , '"'
show split 'a,,' ,
show split '"a,b' , '"'
show split 'a,b' ''

step "The hexadecimal form holds the UTF-8 bytes; a z ends the body and starts a suffix"
show hex 'Größe'
show unhex "x'4772C3B6C39F65'"
show unhex "x_41_zB"
show unhex "x'4G'"
show unhex "abc"

step "Two engines: dot crosses a line end with ICU, not with Boost.Xpressive"
show regex 'a.b' $'a\nb' icu
show regex 'a.b' $'a\nb' xpressive
show regex '(\w)=(\d)' 'a=1,b=2' icu
show regex '(\w)=(\d)' 'a=1,b=2' xpressive
show regex '([a-z]+' 'abc'
