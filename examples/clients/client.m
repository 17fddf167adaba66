% Copies a raw data file by the C interface and compares one well of both: octave-cli client.m SOURCE COPY
arguments = argv();
first = vx_copy(arguments{1}, arguments{2});
printf('plate %s, %d recordings, the first: %s %d\n', first.plate, first.recordings, first.task, first.number);
printf('well %d: %d samples\n', first.well, numel(first.samples));
assert(vx_copy(arguments{2}).samples, first.samples);
printf('the copy is the same\n');
