# bend OFFSET TEXT [FILE]: copies run.vxd, or another file, to bent.vxd and puts a text at an offset. \0 in it is a NUL.
cp "${3:-run.vxd}" bent.vxd
printf "$2" | dd of=bent.vxd bs=1 seek="$1" conv=notrunc status=none
