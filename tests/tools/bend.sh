# bend OFFSET TEXT [FILE]: copies run.vxd, or another file, to bent.vxd and puts a text at an offset, as poke does.
cp "${3:-run.vxd}" bent.vxd
sh poke bent.vxd "$1" "$2"
