# poke FILE OFFSET TEXT: puts a text at an offset of a file, in place. \0 in it is a NUL.
printf "$3" | dd of="$1" bs=1 seek="$2" conv=notrunc status=none
