# Copies a raw data file by the C interface and compares one well of both: Rscript client.R LIBRARY SOURCE COPY
arguments <- commandArgs(trailingOnly = TRUE)
dyn.load(arguments[1])
first <- .Call("vx_read", arguments[2])
cat(sprintf("plate %s, %d recordings, the first: %s %d\n", first$plate, first$recordings, first$task, first$number))
cat(sprintf("well %d: %d samples\n", first$well, length(first$samples)))
invisible(.Call("vx_copy", arguments[2], arguments[3]))
stopifnot(identical(.Call("vx_read", arguments[3])$samples, first$samples))
cat("the copy is the same\n")
