"""Copies a raw data file by the C interface and compares one well of both: client.py SOURCE COPY

The library is found by LD_LIBRARY_PATH. (The package vxfileio is the comfortable way in Python.)"""
import ctypes
import sys
from ctypes import POINTER, Structure, byref, c_char_p, c_double, c_int32, c_int64, c_uint16, c_uint64, c_void_p

vx = ctypes.CDLL("libvxfileio_c.so.1")
FIRST, LAST = -2**63, 2**63 - 1


def struct(name, **fields):
    made = type(name, (Structure,), {"_fields_": [("size", c_int64), *fields.items()]})
    return lambda **values: made(ctypes.sizeof(made), **values)


RawInfo = struct("RawInfo", recordings=c_int64, file_version=c_int32, compound_id=c_int32)
RecordingInfo = struct("RecordingInfo", dose=c_int64, recording_time=c_int64, start_time=c_uint64, wells=c_int64,
                       number=c_int32, is_finished=c_int32)
WellInfo = struct("WellInfo", units_per_ad=c_double, interval=c_int64, well=c_int32, ad_zero=c_int32)
SegmentInfo = struct("SegmentInfo", samples=c_int64, time_from=c_int64, time_to=c_int64, offset=c_int64, well=c_int32,
                     reserved=c_int32)
FileHeader = struct("FileHeader", header_id=c_char_p, file_type=c_char_p, program_version=c_char_p, guid=c_char_p,
                    plate_id=c_char_p, compound_name=c_char_p, file_version=c_int32, compound_id=c_int32)
RecordingHeader = struct("RecordingHeader", task=c_char_p, dose=c_int64, start_time=c_uint64, recording_time=c_int64,
                         number=c_int32, reserved=c_int32)


def check(code, handle):
    if code:
        text, size = ctypes.create_string_buffer(500), c_int64(500)
        vx.vx_last_error(handle, text, byref(size))
        sys.exit(f"error {code}: {text.value.decode()}")


def opened(function, *arguments):
    handle = c_void_p()
    check(function(byref(handle), *arguments), handle)
    return handle


def filled(handle, function, element, *arguments):
    """Asks for the size of an array or text, then for its content."""
    count = c_int64()
    check(function(handle, *arguments, None, byref(count)), handle)
    values = (element * count.value)()
    check(function(handle, *arguments, values, byref(count)), handle)
    return values


def first_well(raw):
    recording = opened(vx.vx_recording_open, raw, c_int64(0), None)
    well = filled(recording, vx.vx_recording_get_wells, c_int32)[0]
    return recording, well, filled(recording, vx.vx_recording_read, c_uint16, well, c_int64(FIRST), c_int64(LAST))


raw = opened(vx.vx_raw_open, sys.argv[1].encode())
info, about, channel, segment = RawInfo(), RecordingInfo(), WellInfo(), SegmentInfo()
check(vx.vx_raw_get_info(raw, byref(info)), raw)
check(vx.vx_raw_get_recording(raw, c_int64(0), byref(about)), raw)
plate = bytes(filled(raw, vx.vx_raw_get_text, ctypes.c_char, 4))[:-1]
task = bytes(filled(raw, vx.vx_raw_get_task, ctypes.c_char, c_int64(0)))[:-1]
print(f"plate {plate.decode()}, {info.recordings} recordings, the first: {task.decode()} {about.number}")

recording, well, samples = first_well(raw)
print(f"well {well}: {len(samples)} samples")

check(vx.vx_recording_get_well(recording, well, byref(channel)), recording)
check(vx.vx_recording_get_segment(recording, c_int64(0), byref(segment)), recording)
writer = opened(vx.vx_writer_create, sys.argv[2].encode(), 1)
check(vx.vx_writer_write_file_header(writer, byref(FileHeader(plate_id=plate))), writer)
header = RecordingHeader(task=task, number=about.number, dose=about.dose)
check(vx.vx_writer_begin_recording(writer, byref(header), (c_int32 * 1)(well), (c_int32 * 1)(channel.ad_zero),
                                   (c_double * 1)(channel.units_per_ad), (c_int64 * 1)(channel.interval), c_int64(1)),
      writer)
end = segment.time_from + (len(samples) - 1) * channel.interval
check(vx.vx_writer_write(writer, well, c_int64(segment.time_from), c_int64(end), c_int64(channel.interval), samples,
                         c_int64(len(samples))), writer)
check(vx.vx_writer_finish(writer), writer)

copy = opened(vx.vx_raw_open, sys.argv[2].encode())
copied, _, again = first_well(copy)
if list(again) != list(samples):
    sys.exit("the copy differs")
print("the copy is the same")
for handle in (recording, copied, writer, copy, raw):
    vx.vx_close(handle)
