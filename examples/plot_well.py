import sys
import vxfileio as vx
from vxfileio import plot

run = vx.open(sys.argv[1], settings=sys.argv[2], ticks_per_second=1_000_000)
recording = run.recordings["Series", 8]
begin = recording.times("B1")[0]
plot.trace(recording, "B1", begin, begin + 3_000_000).figure.savefig(sys.argv[3])
