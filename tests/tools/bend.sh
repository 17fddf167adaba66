# bend OFFSET TEXT [FILE]: makes bent.vxd from run.vxd, or from another file, with a text, in which \0 is a NUL, at an offset.
cp "${3:-run.vxd}" bent.vxd
printf "$2" | dd of=bent.vxd bs=1 seek="$1" conv=notrunc status=none
