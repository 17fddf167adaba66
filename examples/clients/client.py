"""Copies a well of a raw data file by the C interface and compares: client.py SOURCE COPY (needs vxfileio_c.py)"""
import sys

from vxfileio_c import *

raw = opened(vx_raw_open, sys.argv[1].encode())
info, about, first, well = vx_raw_info(), vx_recording_info(), vx_segment_info(), vx_well_info()
vx_raw_get_info(raw, info)
vx_raw_get_recording(raw, 0, about)
plate, task = text_of(vx_raw_get_text, raw, VX_RAW_PLATE_ID), text_of(vx_raw_get_task, raw, 0)
print(f"plate {plate.decode()}, {info.recordings} recordings, the first: {task.decode()} {about.number}")

recording = opened(vx_recording_open, raw, 0, None)
vx_recording_get_segment(recording, 0, first)
vx_recording_get_well(recording, first.well, well)
samples = array_of(vx_recording_read, recording, well.well, VX_TIME_FIRST, VX_TIME_LAST)
print(f"well {well.well}: {len(samples)} samples")

writer = opened(vx_writer_create, sys.argv[2].encode(), VX_CREATE_REPLACE)
vx_writer_write_file_header(writer, vx_file_header(plate_id=plate))
header = vx_recording_header(task=task, number=about.number, dose=about.dose)
vx_writer_begin_recording(writer, header, [well.well], [well.ad_zero], [well.units_per_ad], [well.interval], 1)
end = first.time_from + (len(samples) - 1) * well.interval
vx_writer_write(writer, well.well, first.time_from, end, well.interval, samples, len(samples))
vx_writer_finish(writer)

copy = opened(vx_raw_open, sys.argv[2].encode())
copied = opened(vx_recording_open, copy, 0, None)
if list(array_of(vx_recording_read, copied, well.well, VX_TIME_FIRST, VX_TIME_LAST)) != list(samples):
    sys.exit("the copy differs")
print("the copy is the same")
for handle in (recording, copied, writer, copy, raw):
    vx_close(handle)
