"""Raw data files, compared with the second reader in tests/reference."""

import copy
import fractions
import gc
import pickle
import weakref

import numpy as np
import pytest
import read_vxd
import uneven_files
import vxfileio as vx
from conftest import REFERENCE

FILES = sorted(REFERENCE.glob("*.vxd"))
RUN = REFERENCE / "several_recordings.vxd"


def expected_samples(file, recording):
    """Returns samples and times of each well, by the second reader."""
    samples = {well.id: [] for well in recording.wells}
    times = {well.id: [] for well in recording.wells}
    ticks = {well.id: well.ticks for well in reversed(recording.wells)}
    for segment in file.segments(recording):
        samples.setdefault(segment.well, []).extend(segment.samples)
        span = segment.time_to - segment.time_from
        tick = ticks.get(segment.well, 0)
        if tick <= 0:
            tick = max(span // (len(segment.samples) - 1), 1) if len(segment.samples) > 1 else 1
        times.setdefault(segment.well, []).extend(segment.time_from + i * tick for i in range(len(segment.samples)))
    return samples, times


@pytest.mark.filterwarnings("ignore::vxfileio.MissingSamplesWarning")
@pytest.mark.parametrize("path", FILES, ids=lambda path: path.stem)
def test_samples_times_and_errors_are_those_of_the_second_reader(path):
    try:
        theirs = read_vxd.RawDataFile(path)
    except read_vxd.RawDataError as error:
        with pytest.raises(vx.FileError) as raised:
            vx.open(path)
        assert raised.value.filename == str(path)
        assert str(error) in str(raised.value) or path.stem == "not_ours"
        return
    with theirs, vx.open(path) as run:
        assert len(run.recordings) == len(theirs.recordings)
        for ours, recording in zip(run.recordings, theirs.recordings):
            assert ours.task.encode("utf-8", "surrogateescape") == recording.fields["TaskName"]
            assert (ours.number, ours.dose) == (recording.fields["Recording"], recording.fields["Dose"])
            if not read_vxd.is_finished(recording):
                with pytest.raises(vx.UnfinishedRecordingError):
                    ours.read()
                continue
            if recording.fields["FPosRecordingData"] in (recording.fields["FPosNextRecordingHdr"], path.stat().st_size):
                assert ours.segments().size == 0  # finished and empty
                continue
            try:
                samples, times = expected_samples(theirs, recording)
            except read_vxd.RawDataError as error:
                with pytest.raises(vx.DamagedFileError, match=str(error)):
                    ours.read()
                continue
            assert {well: list(array) for well, array in ours.read().items()} == samples
            for well, expected in times.items():
                assert list(ours.times(well)) == expected


def repeated(path):
    """Makes a file whose first recording is followed by another header with the same channels and the same segments."""
    data, key = (REFERENCE / "two_tasks.vxd").read_bytes(), b"FPosNextRecordingHdr="
    header = data[1190:1190 + 2460].replace(key + b"4564", key + b"-1\0\0")
    path.write_bytes(data.replace(key + b"4564\0", key + b"%d" % len(data)) + header)
    return path


@pytest.mark.parametrize("make", [lambda path: RUN, repeated], ids=["several", "repeated"])
def test_header_has_every_cell(make, tmp_path):
    path = make(tmp_path / "run.vxd")
    with read_vxd.RawDataFile(path) as theirs, vx.open(path) as ours:
        for key, value in theirs.header.items():
            found = getattr(ours.header, key)
            if isinstance(value, bytes):
                found = found.encode("utf-8", "surrogateescape")
            assert found == (tuple(value) if isinstance(value, list) else value), key
        for recording, expected in zip(ours.recordings, theirs.recordings, strict=True):
            for listed, channels in ((recording.header.WellChannels, expected.wells),
                                     (recording.header.AuxChannels, expected.aux)):
                assert [read_vxd.Channel(c.ID, c.Ticks, c.UnitsPerAD, c.ADZero) for c in listed] == channels
            assert recording.header.RecordingStartTime == expected.fields["RecordingStartTime"]


def test_recordings_are_found_by_number_and_by_task(tmp_path):
    path = uneven_files.write(tmp_path / "task.vxd", ({"task": b"\xff", "number": 3}, []))
    run = vx.open(path)
    assert run.recordings["\udcff", 3] is run.recordings[run.recordings[0].task, 3] is run.recordings[0]
    run = vx.open(RUN)
    assert run.recordings["Series", 2147483647] is run.recordings[2] is run.recordings[-2]
    assert [r.task for r in run.recordings[:2]] == ["PreQC", "CompoundTest"]
    for key in ("Series", ("Series",), ("Series", 1, 1), (b"Series", 1), None, 1.0):
        with pytest.raises(TypeError, match=r"index or \(task, number\)"):
            run.recordings[key]
    for number in ("1", 1.0):
        with pytest.raises(TypeError, match="as an integer"):
            run.recordings["Series", number]
    for key in (4, -5, ("Series", 1), ("Series", 2**40)):
        with pytest.raises(vx.NoSuchRecordingError) as raised:
            run.recordings[key]
        assert isinstance(raised.value, (LookupError, ValueError)) and raised.value.filename == str(RUN)


def test_values_are_scaled_and_windows_are_half_open():
    recording = vx.open(RUN).recordings[0]
    assert recording.values(1) == pytest.approx([(s - 32768) * 0.0002 for s in (1, 2, 3, 6)])
    assert list(recording.samples(1, 100, 300)) == [2, 3] and list(recording.samples(1, 100, 101)) == [2]
    assert list(recording.times(1, start=101)) == [200, 300]
    assert recording.samples(1, 200, 200).size == recording.samples(1, stop=-(2**70)).size == 0
    assert list(recording.samples(1, -(2**70), 2**70)) == [1, 2, 3, 6]
    assert list(recording.samples(np.int64(1), np.uint64(100), np.uint64(300))) == [2, 3]
    assert recording.samples(1, stop=np.int64(-(2**63))).size == 0
    for arguments in ((1.0,), (1, 0.0), (1, 0, 300.0)):
        with pytest.raises(TypeError, match="as an integer"):
            recording.samples(*arguments)


def test_gaps_and_overlaps_begin_runs_and_segments_alone_do_not(tmp_path):
    recording = vx.open(RUN).recordings[0]
    assert recording.runs(2).tolist() == [(0, 50, 3, 0)]  # two segments
    uneven = vx.open(uneven_files.uneven(tmp_path / "uneven.vxd")).recordings[0]
    assert uneven.runs(11).tolist() == [(1000, 100, 3, 0), (9000, 100, 4, 3)]
    assert uneven.runs(13).tolist() == [(0, 50, 4, 0), (100, 50, 3, 4)]
    assert uneven.runs(13, 100, 200).tolist() == [(100, 50, 2, 0), (100, 50, 2, 2)]
    unlisted = [uneven_files.segment(14, 100, 0, 1, 2), uneven_files.segment(14, 10, 1000, 3, 4, 5)]
    path = uneven_files.write(tmp_path / "unlisted.vxd", ({"task": b"Series", "number": 1}, unlisted))
    assert list(vx.open(path).recordings[0].times(14)) == [0, 100, 1000, 1010, 1020]  # each segment has its interval
    assert recording.segments().dtype.names == ("well", "samples", "time_from", "time_to", "offset")


def test_read_fills_the_callers_arrays_and_leaves_the_rest():
    recording = vx.open(RUN).recordings[0]
    room = np.full(6, 9, np.uint16)
    result = recording.read([1], out={1: room})
    assert result[1].base is room and list(room) == [1, 2, 3, 6, 9, 9]
    for wrong in (np.zeros(3, np.uint16), np.zeros(4), np.zeros(8, np.uint16)[::2], [0] * 4):
        with pytest.raises(vx.UsageError, match="contiguous"):
            recording.read([1], out={1: wrong})
    with pytest.raises(vx.UsageError, match="out must be a mapping"):
        recording.read([1], out=room)
    assert recording.read(iter([1]), out={1: room})[1].base is room
    with pytest.raises(vx.UsageError, match=r"out\[2\] must be"):
        recording.read([1, 2], out={1: room})
    for first, second in ((room, room), (room[:4], room[3:])):
        with pytest.raises(vx.UsageError, match="overlap"):
            recording.read([1, 2], out={1: first, 2: second})
    halves = np.empty(7, np.uint16)
    recording.read([1, 2], out={1: halves[3:], 2: halves[:3]})
    assert list(halves) == [4, 5, 65535, 1, 2, 3, 6]


def test_wells_that_are_not_there_are_errors():
    recording = vx.open(RUN).recordings[0]
    assert (recording.channel(1).ADZero, recording.channel(1).Ticks) == (32768, 100)
    for call in (recording.samples, recording.channel):
        with pytest.raises(vx.NoSuchWellError, match="no well 5"):
            call(5)
    with pytest.raises(vx.UsageError, match="needs the settings"):
        recording.samples("B7")
    for wells in ([], iter([]), 1, np.int64(1), "B7", b"B7"):
        with pytest.raises(vx.UsageError, match="at least one"):
            recording.read(wells)


def test_seconds_need_ticks_per_second():
    with pytest.raises(vx.UsageError, match="ticks_per_second"):
        vx.open(RUN).recordings[0].seconds(1)
    for rate in (1000, np.float32(1000), fractions.Fraction(1000)):
        seconds = vx.open(RUN, ticks_per_second=rate).recordings[0].seconds(1)
        assert seconds.dtype == np.float64 and list(seconds) == [0, 0.1, 0.2, 0.3]
    assert list(vx.open(RUN, ticks_per_second=10).recordings[0].seconds(1, 100, 300)) == [10, 20]
    for wrong in (0, -1, float("nan"), float("inf"), 10**400, "1000"):
        with pytest.raises(vx.UsageError, match="above 0"):
            vx.open(RUN, ticks_per_second=wrong)


def test_unfinished_recording_is_read_on_request():
    recording = vx.open(REFERENCE / "unfinished.vxd", unfinished=True).recordings[1]
    assert not recording.finished
    assert recording.certain_samples <= sum(map(len, recording.read().values()))
    for one in (recording, copy.deepcopy(recording)):
        assert list(one.samples(11)) == [1, 256, 65535, 32768]


def test_damaged_recording_is_read_up_to_the_damage_on_request():
    path = REFERENCE / "circle_of_segments.vxd"
    for unfinished in (False, True):
        with pytest.raises(vx.DamagedFileError):
            vx.open(path, unfinished=unfinished).recordings[0].segments()
        run = vx.open(path, partial=True, unfinished=unfinished)
        for one in (run, copy.deepcopy(run)):
            assert one.recordings[0].damage == "Error reading Data Segment Header"
            assert one.recordings[0].segments().size > 0


def test_missing_samples_are_reported_where_they_are_read():
    recording = vx.open(REFERENCE / "cut_samples.vxd").recordings[0]
    with pytest.warns(vx.MissingSamplesWarning, match="3 samples of well 12") as warned:
        assert list(recording.samples(12)) == [7, 52, 0, 0]
        recording.read()
        recording.to_xarray([12])
    assert [warning.filename for warning in warned] == [__file__] * 3


def test_closing_ends_reading_but_arrays_stay(open_files):
    before = open_files()
    with vx.open(RUN) as run:
        samples = run.recordings[0].samples(1)
    assert run.closed and list(samples) == [1, 2, 3, 6] and open_files() == before
    with pytest.raises(vx.UsageError, match="closed"):
        run.recordings[0].samples(1)
    run.close()


def test_a_file_that_a_program_drops_is_closed_at_once():
    gc.disable()
    try:
        run = vx.open(RUN)
        dropped = weakref.ref(run)
        recording = run.recordings[0]
        assert recording is run.recordings[0] and recording in run.recordings
        del run
        assert list(recording.samples(1)) == [1, 2, 3, 6]
        del recording
        assert dropped() is None
    finally:
        gc.enable()


def test_pickles_reopen_the_file(tmp_path, monkeypatch):
    (tmp_path / "run.vxd").write_bytes(RUN.read_bytes())
    monkeypatch.chdir(tmp_path)
    run = vx.open("run.vxd", ticks_per_second=10)
    monkeypatch.chdir("/")
    for protocol in range(pickle.HIGHEST_PROTOCOL + 1):
        again = pickle.loads(pickle.dumps(run.recordings[0], protocol))
        assert list(again.samples(1)) == [1, 2, 3, 6] and again.run.ticks_per_second == 10
    assert len(copy.deepcopy(run).recordings) == 4


def test_frames_have_a_row_per_sample(tmp_path):
    pandas = pytest.importorskip("pandas")
    frame = vx.open(RUN, ticks_per_second=100).recordings[0].to_dataframe([1, 2], scaled=False)
    expected = pandas.DataFrame({"well": [1, 1, 1, 1, 2, 2, 2], "time": [0, 100, 200, 300, 0, 50, 100],
                                 "seconds": [0, 1, 2, 3, 0, 0.5, 1], "value": [1, 2, 3, 6, 4, 5, 65535]})
    pandas.testing.assert_frame_equal(frame, expected, check_dtype=False)
    uneven = vx.open(uneven_files.uneven(tmp_path / "uneven.vxd")).recordings[0]
    frame = uneven.to_dataframe()
    assert frame["time"].tolist() == [time for well in (11, 12, 13) for time in uneven.times(well)]
    assert uneven.to_dataframe([13], 100, 200, scaled=False)["value"].tolist() == [7, 8, 11, 12]
    without_wells = vx.open(RUN).recordings[3].to_dataframe()
    assert without_wells.empty and list(without_wells) == ["well", "time", "value"]


def test_datasets_share_dimensions_of_equal_times(tmp_path):
    pytest.importorskip("xarray")
    data = vx.open(REFERENCE / "small_example.vxd").recordings[0].to_xarray(None, 100, 300, scaled=False)
    assert data["11"].dims == data["12"].dims == ("time",)
    assert data["11"].values.tolist() == [256, 65535] and data["time"].values.tolist() == [100, 200]
    data = vx.open(uneven_files.uneven(tmp_path / "uneven.vxd")).recordings[0].to_xarray([13, 11, 12])
    assert [data[well].dims for well in data] == [("time",), ("time_2",), ("time_2",)]
    assert data.attrs == {"task": "Series", "recording": 1, "dose": 7}
    assert vx.open(RUN).recordings[0].to_xarray()["2"].dims == ("time_2",)
    for labels, names in (("AB", "AB"), ("AA", "12"), (("A", "time"), "12"), (("A", "time_2"), "12")):
        settings = vx.Settings()
        settings.RecordPlate.Data.Wells = [vx.PlateWell(WellID=i + 1, Label=label) for i, label in enumerate(labels)]
        named = vx.open(RUN, settings=settings).recordings[0].to_xarray([1, 2])
        assert [(name, named[name].attrs["well"]) for name in named] == list(zip(names, (1, 2)))
    assert len(vx.open(RUN).recordings[3].to_xarray()) == 0
    path = uneven_files.write(tmp_path / "gaps.vxd", ({}, [
        uneven_files.segment(11, 100, 0, 1, 2), uneven_files.segment(11, 100, 400, 3),
        uneven_files.segment(12, 100, 0, 4), uneven_files.segment(12, 100, 300, 5, 6)]))
    data = vx.open(path).recordings[0].to_xarray([11, 12], scaled=False)
    assert data["time"].values.tolist() == [0, 100, 400] and data["time_2"].values.tolist() == [0, 300, 400]


def test_representations_are_printable_and_escaped(tmp_path):
    path = tmp_path / "<b>&.vxd"
    path.write_bytes((REFERENCE / "awkward_text.vxd").read_bytes())
    run = vx.open(path)
    for thing in (run, run.recordings, run.recordings[4], run.header):
        repr(thing).encode("utf-8")
        html = thing._repr_html_()
        html.encode("utf-8")
        assert "<b>" not in html
    assert "&lt;b&gt;&amp;" in run._repr_html_()
    with vx.open(RUN) as run:
        assert repr(run).endswith(": 4 recordings of PreQC, CompoundTest, Series, PostQC>")
    assert repr(run).endswith(": closed>")
    for count, last in ((30, "True"), (31, "and 1 more")):
        recordings = [({"task": b"Series", "number": number}, []) for number in range(count)]
        run = vx.open(uneven_files.write(tmp_path / "many.vxd", *recordings))
        assert run._repr_html_().endswith(f">{last}</td></tr></tbody></table>")


@pytest.mark.parametrize("name, kind", [("small_example.vxd", "raw"), ("xml/settings.vxs", "settings"),
                                        ("xml/results_indented.vxr", "results"), ("workbooks/small.xls", "workbook"),
                                        ("read_vxd.py", "unknown")])
def test_kind_is_that_of_the_content(name, kind, tmp_path):
    copied = tmp_path / "any name"
    content = (REFERENCE / name).read_bytes()
    copied.write_bytes(content)
    assert vx.kind_of(copied) == kind
    if content.startswith(b"<"):
        for before in (b"\xef\xbb\xbf\n", b"<!--" + b"x" * 200000 + b"-->"):
            copied.write_bytes(before + content)
            assert vx.kind_of(copied) == kind
        copied.write_bytes(copied.read_bytes().replace(b"Vexaprobe", b"Other"))
        assert vx.kind_of(copied) == "unknown"
        copied.write_bytes(content.partition(b"</Header>")[0])
        assert vx.kind_of(copied) == kind
