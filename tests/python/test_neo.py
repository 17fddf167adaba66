"""Raw data files in neo, and from there in MNE. The files are made without the library."""

import pickle

import numpy as np
import pytest
import uneven_files
import vxfileio as vx
from conftest import REFERENCE

neo = pytest.importorskip("neo")
baserawio = pytest.importorskip("neo.rawio.baserawio")

import quantities as pq  # noqa: E402
import vxfileio.neo as adapter  # noqa: E402
from neo.test.rawiotest import rawio_compliance  # noqa: E402
from neo.test.tools import assert_neo_object_is_compliant  # noqa: E402

COMPLIANCE = [rawio_compliance.header_is_total, rawio_compliance.count_element, rawio_compliance.read_analogsignals,
              rawio_compliance.read_spike_times, rawio_compliance.read_spike_waveforms, rawio_compliance.read_events,
              rawio_compliance.has_annotations]


@pytest.fixture
def uneven(tmp_path):
    return uneven_files.uneven(tmp_path / "uneven.vxd")


@pytest.fixture(params=["0.11", "0.14"])
def contract(request, monkeypatch):
    """The contract of a version of neo. That of 0.14 adds buffers; a stream or channel without one has an empty ID."""
    if request.param == "0.14":
        later = {"_signal_buffer_dtype": [("name", "U64"), ("id", "U64")],
                 "_signal_stream_dtype": [("name", "U128"), ("id", "U64"), ("buffer_id", "U64")],
                 "_signal_channel_dtype": [*baserawio._signal_channel_dtype, ("buffer_id", "U64")]}
        for name, dtype in later.items():
            monkeypatch.setattr(baserawio, name, dtype, raising=False)
            monkeypatch.setattr(rawio_compliance, name, dtype, raising=False)
    return request.param


@pytest.mark.parametrize("name", ["small_example", "uneven"])
def test_neo_finds_its_contract_kept(name, contract, uneven):
    path = uneven if name == "uneven" else REFERENCE / f"{name}.vxd"
    reader = adapter.VexaprobeRawIO(path, ticks_per_second=1000)
    reader.parse_header()
    for check in COMPLIANCE:
        check(reader)
    header = reader.header
    assert ("signal_buffers" in header) == (contract == "0.14")
    assert header["signal_streams"].dtype == np.dtype(baserawio._signal_stream_dtype)
    assert header["signal_channels"].dtype == np.dtype(baserawio._signal_channel_dtype)
    if contract == "0.14":
        assert header["signal_buffers"].size == 0
        assert not any(header["signal_streams"]["buffer_id"]) and not any(header["signal_channels"]["buffer_id"])
    block = adapter.VexaprobeIO(path, 1000).read_block()
    assert_neo_object_is_compliant(block)


def test_each_run_is_a_signal_and_no_gap_is_filled(uneven):
    settings = vx.Settings()
    settings.RecordPlate.Data.Wells = [vx.PlateWell(WellID=12, Label="B7")]
    reader = adapter.VexaprobeIO(uneven, ticks_per_second=1000, units="mV", settings=settings)
    block = reader.read_block()
    assert list(dict.fromkeys(reader.header["signal_channels"]["name"])) == ["11", "B7", "13"]
    assert [(reader.segment_t_start(0, i), reader.segment_t_stop(0, i)) for i in range(3)] == [
        (0.0, 1.3), (0.1, 9.4), (20.0, 21.0)]
    found = [[(list(signal.array_annotations["channel_ids"]), float(signal.t_start), signal.magnitude.tolist())
              for signal in part.analogsignals if len(signal)] for part in block.segments]
    first = [[(s11 - 1000) * 0.5, (s12 - 2000) * 0.25] for s11, s12 in ((1, 3), (2, 4), (9, 10))]
    second = [[(s11 - 1000) * 0.5, (s12 - 2000) * 0.25] for s11, s12 in ((14, 18), (15, 19), (16, 20), (17, 21))]
    assert found == [
        [(["11", "12"], 1.0, first), (["13"], 0.0, [[(s - 1000) * 0.5] for s in (5, 6, 7, 8)])],
        [(["11", "12"], 9.0, second), (["13"], 0.1, [[(s - 1000) * 0.5] for s in (11, 12, 13)])],
        [(["11"], 20.0, [[(s - 1000) * 0.5] for s in (22, 23, 24)]), (["12"], 20.9, [[(25 - 2000) * 0.25]])]]
    rates = [{int(signal.sampling_rate) for signal in part.analogsignals if len(signal)} for part in block.segments]
    assert rates == [{10, 20}, {10, 20}, {10}]
    annotations = [tuple(part.annotations[key] for key in ("task", "recording", "dose", "place", "run"))
                   for part in block.segments]
    assert annotations == [("Series", 1, 7, 0, 0), ("Series", 1, 7, 0, 1), ("Series", 2, 8, 1, 0)]
    assert (block.annotations["Guid"], block.annotations["PlateID"]) == ("0123", "P1")


def test_runs_of_different_intervals_are_signals_of_one_segment(tmp_path, monkeypatch):
    monkeypatch.setattr(uneven_files, "WELLS", (uneven_files.Channel(11, 0, 0.5, 1000),))
    path = uneven_files.write(tmp_path / "run.vxd", ({}, [
        uneven_files.segment(11, 100, 0, 1, 2, 3), uneven_files.segment(11, 50, 1000, 4, 5)]))
    block = adapter.VexaprobeIO(path, 1000).read_block()
    assert [[(int(signal.sampling_rate), len(signal)) for signal in part.analogsignals] for part in block.segments] == [
        [(10, 3), (20, 2)]]


@pytest.mark.parametrize("first, stop, channels, expected", [
    (0, 2, None, [[11], [12]]), (1, 3, [0], [[12], [13]]), (None, None, slice(0, 1), [[11], [12], [13]]),
    (2, 2, None, []), (-1, None, [0, 0], [[13, 13]]), (1, 99, np.array([True]), [[12], [13]])])
def test_chunks_of_times_that_were_recorded_twice(first, stop, channels, expected, uneven):
    reader = adapter.VexaprobeRawIO(uneven, ticks_per_second=1000)
    reader.parse_header()
    reader = pickle.loads(pickle.dumps(reader))
    stream = int(reader.header["signal_channels"]["stream_id"][reader.header["signal_channels"]["id"] == "13"][0])
    chunk = reader.get_analogsignal_chunk(0, 1, first, stop, stream, channels)
    assert chunk.dtype == np.uint16 and chunk.tolist() == expected


def test_registered_once_neo_finds_the_readers_by_the_extension(monkeypatch):
    monkeypatch.setattr(neo.io, "io_by_extension", {}, raising=False)  # as in later versions
    adapter.register()
    adapter.register()
    assert neo.rawio.get_rawio_class("x.vxd") is neo.rawio.VexaprobeRawIO is adapter.VexaprobeRawIO
    assert neo.rawio.rawiolist.count(adapter.VexaprobeRawIO) == neo.io.iolist.count(adapter.VexaprobeIO) == 1
    assert neo.io.io_by_extension == {"vxd": [adapter.VexaprobeIO]}
    block = neo.get_io(str(REFERENCE / "small_example.vxd"), ticks_per_second=100, units="mV").read_block(lazy=True)
    part = block.segments[0].analogsignals[0].load(time_slice=(1 * pq.s, 3 * pq.s))
    np.testing.assert_allclose(part.rescale("uV").magnitude[:, 0], [(s - 32768) * 0.2 for s in (256, 65535)], rtol=1e-6)


def test_errors_say_what_is_missing():
    with pytest.raises(vx.UsageError, match="ticks_per_second"):
        adapter.VexaprobeIO(REFERENCE / "small_example.vxd")
    for name, failure in (("unfinished", vx.UnfinishedRecordingError), ("damaged_segments", vx.DamagedFileError),
                          ("not_ours", vx.UnknownFileError)):
        with pytest.raises(failure):
            adapter.VexaprobeIO(REFERENCE / f"{name}.vxd", ticks_per_second=100)
    for name, option in (("unfinished", "unfinished"), ("circle_of_segments", "partial")):
        block = adapter.VexaprobeIO(REFERENCE / f"{name}.vxd", ticks_per_second=100, **{option: True}).read_block()
        assert sum(map(len, block.segments[-1].analogsignals)) > 0


def test_mne_reads_a_signal(tmp_path):
    mne = pytest.importorskip("mne")
    block = adapter.VexaprobeIO(REFERENCE / "small_example.vxd", ticks_per_second=100_000, units="mV").read_block()
    signal = block.segments[0].analogsignals[0]
    info = mne.create_info(list(signal.array_annotations["channel_names"]), float(signal.sampling_rate), "ecg")
    raw = mne.io.RawArray(signal.rescale("V").magnitude.T, info, verbose="error")
    raw.save(tmp_path / "run_raw.fif", fmt="double", verbose="error")
    again = mne.io.read_raw(tmp_path / "run_raw.fif", verbose="error")
    assert (again.ch_names, again.info["sfreq"]) == (["11", "12"], 1000)
    expected = [[(s - 32768) * 0.0002e-3 for s in well] for well in ((1, 256, 65535, 32768), (7, 8, 9, 10))]
    np.testing.assert_allclose(again.get_data(), expected, rtol=1e-5, atol=1e-9)
