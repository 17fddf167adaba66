"""Writing raw data files, read back with the second reader."""

import copy
import os
import pickle

import numpy as np
import pytest
import read_vxd
import vxfileio as vx
from conftest import files_of_at_most

HEADER = vx.RawDataFileHdr(HeaderID="OVL Vexaprobe 2", FileVersion=3, PlateID="P1", CompoundName="C")
LONG = 2**31 - 1  # the longest interval
CHANNELS = [vx.RawDataChannelInfo(ID=well, ADZero=32768, UnitsPerAD=0.0002, Ticks=ticks) for well, ticks in ((11, 10), (12, LONG))]
RECORDING = vx.RawDataRecordingHdr(TaskName="Series", Recording=1, Dose=1000, WellChannels=CHANNELS)


def segments_of(path, recording=0):
    with read_vxd.RawDataFile(path) as file:
        return [(s.well, s.time_from, s.time_to, list(s.samples)) for s in file.segments(file.recordings[recording])]


def test_written_segments_are_read_by_the_second_reader(tmp_path):
    path = tmp_path / "run.vxd"
    with vx.RawWriter(path, HEADER) as writer:
        with writer.recording(RECORDING) as recording:
            recording.write(11, 0, np.array([1, 2, 65535], np.uint16))
            meanwhile = vx.open(path, unfinished=True).recordings[0]
            assert list(meanwhile.samples(11)) == [1, 2, 65535]
            writer.write(12, -2**63, [7, 65535, 8, 9])
            recording.write(11, 30, np.arange(10, dtype=np.int64)[::-2])
            recording.write(11, 2**63 - 1, [4])
        writer.update_header("PreQC", [7, -1])
        writer.flush()
        assert len(meanwhile.samples(11)) == 3
        meanwhile.refresh()
        assert len(meanwhile.samples(11)) == 9
    assert segments_of(path) == [(11, 0, 20, [1, 2, 65535]), (12, -2**63, 3 * LONG - 2**63, [7, 65535, 8, 9]),
                                 (11, 30, 70, [9, 7, 5, 3, 1]), (11, 2**63 - 1, 2**63 - 1, [4])]
    assert list(vx.open(path).recordings[0].times(12)) == [i * LONG - 2**63 for i in range(4)]
    with read_vxd.RawDataFile(path) as file:
        header, recording = file.header, file.recordings[0]
    assert [header[key] for key in ("HeaderID", "FileVersion", "PlateID", "CompoundName", "PreQC")] == [
        b"OVL Vexaprobe 2", 3, b"P1", b"C", [7, -1]]
    assert (recording.fields["TaskName"], recording.fields["Dose"]) == (b"Series", 1000)
    assert [(well.id, well.ad_zero, well.units_per_ad, well.ticks) for well in recording.wells] == [
        (11, 32768, 0.0002, 10), (12, 32768, 0.0002, LONG)]


def test_an_existing_file_is_never_overwritten_unless_asked(tmp_path):
    path = tmp_path / "run.vxd"
    path.write_bytes(b"old")
    with pytest.raises(FileExistsError) as raised:
        vx.RawWriter(path, HEADER)
    assert raised.value.filename == str(path) and path.read_bytes() == b"old"
    with pytest.raises(vx.UsageError):
        vx.RawWriter(path, vx.RawDataFileHdr(PlateID="a=b"), overwrite=True)
    assert path.exists()  # what was there is never deleted
    path.write_bytes(b"old")
    with pytest.raises(OSError):
        vx.RawWriter(str(path) + "\0new", HEADER, overwrite=True)
    assert path.read_bytes() == b"old"
    vx.RawWriter(path, HEADER, overwrite=True).close()
    assert vx.kind_of(path) == "raw"


@pytest.mark.parametrize("samples", [[0.5], [-1], [65536], [True], np.array([65536], np.uint32), np.array([-1], np.int16),
                                     np.array([1], np.float16), [], [[1]], ["a"], 5])
def test_samples_that_would_change_are_refused(samples, tmp_path):
    with vx.RawWriter(tmp_path / "run.vxd", HEADER) as writer, writer.recording(RECORDING) as recording:
        with pytest.raises(vx.UsageError) as raised:
            recording.write(11, 0, samples)
        assert raised.value.filename == str(tmp_path / "run.vxd")
        for start in (2**63, -2**63 - 1):
            with pytest.raises(vx.UsageError, match="64 bits"):
                recording.write(11, start, [1])
    assert vx.open(tmp_path / "run.vxd").recordings[0].segments().size == 0


def test_strict_writers_refuse_and_others_warn(tmp_path):
    bad = vx.RawDataFileHdr(PlateID="a=b")
    with pytest.raises(vx.UsageError, match="PlateID") as raised:
        vx.RawWriter(tmp_path / "run.vxd", bad)
    assert raised.value.filename == str(tmp_path / "run.vxd") and list(tmp_path.iterdir()) == []
    with pytest.warns(vx.WriteWarning, match="PlateID"):
        vx.RawWriter(tmp_path / "run.vxd", bad, strict=False).close()


def test_a_segment_out_of_order_is_refused_and_the_file_stays_valid(tmp_path):
    path = tmp_path / "run.vxd"
    with vx.RawWriter(path, HEADER) as writer:
        with pytest.raises(vx.UsageError, match="No recording"):
            writer.write(11, 0, [1])
        first = writer.recording(RECORDING)
        first.write(11, 0, [1, 2])
        for well, start in ((11, 5), (13, 100)):
            with pytest.raises(vx.UsageError):
                first.write(well, start, [3])
        with pytest.raises(vx.UsageError, match="TaskName"):
            writer.recording(vx.RawDataRecordingHdr(TaskName="a=b"))
        first.write(11, 20, [4])  # what is refused doesn't end the recording
        writer.recording(RECORDING)
        with pytest.raises(vx.UsageError, match="has ended"):
            first.write(11, 20, [3])
        assert repr(first) == f"<vxfileio.RecordingWriter Series 1 of {str(path)!r}>"
    writer.close()
    for refused in (pickle.dumps, copy.copy):
        with pytest.raises(TypeError, match="can't be pickled or copied"):
            refused(writer)
    with pytest.raises(vx.UsageError, match="closed"):
        writer.recording(RECORDING)
    assert segments_of(path) == [(11, 0, 10, [1, 2]), (11, 20, 20, [4])]


def test_what_the_system_refuses_is_raised_by_the_call_that_failed(tmp_path):
    path = os.fsencode(tmp_path) + b"/\xff.vxd"
    writer = vx.RawWriter(path, HEADER)
    recording = writer.recording(RECORDING)
    recording.write(11, 0, [1, 2])
    for missing in (1, 2):
        with files_of_at_most(20000), pytest.raises(OSError, match=f"segments missing: {missing}") as raised:
            recording.write(11, 20, np.ones(50000, np.uint16))
        assert raised.value.errno == 27 and raised.value.filename == os.fsdecode(path)  # EFBIG
    recording.write(12, 20, [3])
    with pytest.raises(OSError, match="segments missing"):
        writer.flush()
    writer.close()
    assert segments_of(path) == [(11, 0, 10, [1, 2]), (12, 20, 20, [3])]


def test_names_that_are_not_utf8_are_written_and_read(tmp_path):
    path = os.fsencode(tmp_path) + b"/\xff.vxd"
    with vx.RawWriter(path, HEADER) as writer, writer.recording(RECORDING) as recording:
        recording.write(11, 0, [5])
    assert list(vx.open(path).recordings[0].samples(11)) == [5]
    repr(vx.open(path)).encode("utf-8")
