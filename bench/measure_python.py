"""What Measure.h does, for programs in Python. Makes the package available, which is in the folder `python` next to
that of this script."""
import os
import pathlib
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "python"))


def peak_kib():
    with open("/proc/self/status", encoding="ascii") as status:
        return next(int(line.split()[1]) for line in status if line.startswith("VmHWM:"))


def measure(work):
    """Calls `work`, prints its seconds and the KiB that it added to the peak, and returns its result."""
    with open("/proc/self/clear_refs", "w", encoding="ascii") as peak:
        peak.write("5")
    before = peak_kib()
    os.access("work begins", os.F_OK)
    start = time.perf_counter()
    result = work()
    seconds = time.perf_counter() - start
    os.access("work ends", os.F_OK)
    print(f"{seconds:.6f} {peak_kib() - before} -1")
    return result
