"""Campaigns of many plates with dask: compared with the files one by one, some of which are damaged."""

import collections
import logging
import os
import pathlib
import pickle
import signal
import sys
import time

import numpy as np
import pytest
import read_vxd
import uneven_files
import vxfileio as vx
from conftest import REFERENCE

dask = pytest.importorskip("dask")
pandas = pytest.importorskip("pandas")
pytest.importorskip("dask.dataframe")

sys.path.append(str(REFERENCE.parents[1] / "scripts"))
import campaign  # noqa: E402
import vxfileio.dask  # noqa: E402

PLATES, DAMAGED = 60, 5

pytestmark = [pytest.mark.filterwarnings("ignore::vxfileio.MissingSamplesWarning"),
              pytest.mark.filterwarnings("ignore:make_current:DeprecationWarning")]

# How the errors begin, by the damage.
ERRORS = {
    "mark": "The file isn't one of the system", "empty": "The file", "cut in samples": "250 samples are beyond",
    "cut in the middle": "Error reading Recording Header",
    "broken chain of recordings": "Error reading Recording Header",
    "broken chain of segments": "Error reading Data Segment Header",
}


@pytest.fixture(scope="module")
def plates(tmp_path_factory):
    paths, damages = campaign.make(tmp_path_factory.mktemp("plates"), PLATES, DAMAGED)
    assert set(damages.values()) == set(campaign.DAMAGES)
    return [str(path) for path in paths], {str(path): damage for path, damage in damages.items()}


@pytest.fixture(autouse=True)
def synchronous():
    with dask.config.set(scheduler="synchronous"):
        yield


def peak(recording):
    """A function for `map_recordings`: the range of all samples, by one pass along the file."""
    arrays = recording.read()
    return {"peak": int(max(np.ptp(array.astype(int)) for array in arrays.values())), "whole": len(arrays) == 6}


def peaks_by_the_second_reader(path):
    with read_vxd.RawDataFile(path) as file:
        for recording in file.recordings:
            wells = collections.defaultdict(list)
            for segment in file.segments(recording):
                wells[segment.well].extend(segment.samples)
            yield max(max(samples) - min(samples) for samples in wells.values())


def test_the_catalog_has_a_row_for_each_recording_and_for_each_bad_file(plates):
    paths, damages = plates
    table = vxfileio.dask.catalog(paths).compute()
    assert {column: str(dtype) for column, dtype in table.dtypes.items()} == vxfileio.dask.CATALOG
    assert list(dict.fromkeys(table.path)) == paths
    for number, (path, rows) in enumerate(table.groupby("path", sort=False)):
        damage = damages.get(path)
        if damage is None:
            assert list(rows.samples) == [6 * 1800] * 4 and set(rows.state) == {"finished"}
            assert rows.error.isnull().all()
        else:
            errors = rows[rows.error.notnull()]
            assert len(errors) == 1 and errors.error.iloc[0].startswith(ERRORS[damage]), damage
            assert errors.state.iloc[0] == ("unfinished" if damage == "empty" else "damaged")
        if rows.number.notnull().all():
            assert list(zip(rows.task, rows.number, rows.dose)) == [
                ("Series", place + 1, dose) for place, dose in enumerate(campaign.DOSES)]
            assert set(zip(rows.Guid, rows.plate, rows["compound"], rows.wells)) == {
                (campaign.guid_of(number), f"P{number}", f"Compound {number % 20}", 6)}


def test_the_catalog_names_unfinished_empty_and_missing_files_and_reads_no_more_than_is_asked(tmp_path, monkeypatch):
    paths = [REFERENCE / "unfinished.vxd", REFERENCE / "no_recordings.vxd", tmp_path / "none.vxd", tmp_path,
             REFERENCE / "small_example.vxd", REFERENCE / "cut_samples.vxd"]
    table = vxfileio.dask.catalog(paths).compute()
    assert list(table.state) == ["finished", "unfinished", "unfinished", "unreadable", "unreadable", "finished",
                                 "damaged"]
    assert list(table.error.fillna("")) == ["", "", "Opened file is empty.", os.strerror(2), os.strerror(21), "",
                                            "3 samples are beyond the end of the file"]
    for column in ("samples", "state", "error"):
        assert vxfileio.dask.catalog(paths)[[column]].compute()[column].equals(table[column])
    monkeypatch.setattr(vx.Recording, "index", lambda self: pytest.fail("segments were read"))
    narrow = vxfileio.dask.catalog(paths)[["dose", "path"]].compute()
    assert list(narrow.columns) == ["dose", "path"] and list(narrow.dose.dropna()) == [1000] * 4


@pytest.mark.parametrize("scheduler", ["synchronous", "threads", "processes"])
def test_mapped_functions_have_the_same_result_in_threads_and_processes(scheduler, plates):
    paths, damages = plates
    table = vxfileio.dask.map_recordings(paths[:12], peak).compute(scheduler=scheduler, num_workers=2)
    assert list(table.columns) == ["path", "task", "number", "dose", "peak", "whole", "error"]
    assert (table.peak.dtype, table.whole.dtype) == ("Int64", "boolean")
    for path, rows in table.groupby("path", sort=False):
        if path not in damages:
            assert list(rows.peak) == list(peaks_by_the_second_reader(path))
        else:
            assert rows.error.notnull().any()
    assert list(table.path.unique()) == paths[:12]


def test_functions_return_values_rows_or_tables_and_can_receive_the_columns(plates):
    path = plates[0][0]
    asked = []

    def with_columns(recording, columns):
        asked.append(columns)
        return {"a": 1, "b": 2.5}

    table = vxfileio.dask.map_recordings(path, with_columns, meta={"a": int, "b": float})
    assert table["b"].sum().compute() == 10 and set(map(tuple, asked)) == {("b",)}
    lengths = vxfileio.dask.map_recordings(path, lambda recording: recording.seconds(12)[-1], ticks_per_second=5)
    assert list(lengths.compute()["value"]) == [recording.times(12)[-1] / 5 for recording in vx.open(path).recordings]
    greatest = vxfileio.dask.map_recordings(path, lambda recording: recording.samples(12).max()).compute()["value"]
    assert greatest.dtype == "UInt16"
    assert list(greatest) == [recording.samples(12).max() for recording in vx.open(path).recordings]
    frames = vxfileio.dask.map_recordings(path, vx.Recording.to_dataframe)
    assert len(frames) == 4 * 6 * 1800
    assert set(frames.columns) == {"path", "task", "number", "dose", "well", "time", "value", "error"}
    kept = pandas.DataFrame({"a": [7]})
    again = vxfileio.dask.map_recordings(path, lambda recording: kept, meta={"a": int}).compute(scheduler="synchronous")
    assert list(again.a) == [7] * 4 and list(kept.columns) == ["a"]


def test_errors_of_a_function_are_raised_and_those_of_files_are_rows(plates):
    path = plates[0][0]
    read = vxfileio.dask.map_recordings(path, lambda recording: recording.samples(99)[0], meta={"value": int}).compute()
    assert list(read.error) == ["The recording has no well 99"] * 4 and read["value"].isnull().all()
    with pytest.raises(ZeroDivisionError):
        vxfileio.dask.map_recordings(path, lambda recording: 1 // 0, meta={"value": int}).compute()
    for returned, problem in (({"dose": 1}, "already"), ({"a": 1, "c": 2}, "c")):
        with pytest.raises(ValueError, match=problem):
            vxfileio.dask.map_recordings(path, lambda recording: returned, meta={"a": int}).compute()
    for files in (0, -1):
        with pytest.raises(vx.UsageError, match="at least 1"):
            vxfileio.dask.catalog(path, files)
    opened = vxfileio.dask.map_recordings(path, lambda recording: open(path + "-"), meta={"value": int}).compute()
    assert list(opened.error) == [f"{os.strerror(2)}: {path + '-'!r}"] * 4


@pytest.mark.parametrize("name, function, reason", [
    ("not_ours.vxd", peak, "isn't one of the system: '.*not_ours.vxd'"),
    ("small_example.vxd", lambda recording: recording.samples("A1"), "'A1' needs the settings"),
], ids=["file", "function"])
def test_a_function_whose_types_are_unknown_is_refused_with_the_reason(name, function, reason):
    with pytest.raises(vx.UsageError, match=rf"{reason}.*; say with meta"):
        vxfileio.dask.map_recordings([REFERENCE / name], function)


def test_responses_of_all_plates_and_their_errors(plates):
    paths = [path.replace(".vxd", ".vxr") for path in plates[0][:8]]
    pathlib.Path(paths[3]).write_bytes(b"<Results>")
    wrong = [plates[0][0], paths[3], paths[3] + "none"]
    table = vxfileio.dask.responses(paths + wrong).compute()
    assert {column: str(dtype) for column, dtype in table.dtypes.items()} == vxfileio.dask.RESPONSES
    assert list(table[table.error.notnull()].path) == [paths[3], *wrong]
    for number in (0, 7):
        rows = table[table.path == paths[number]]
        expected = vx.open(paths[number]).responses
        assert set(rows.Guid) == {campaign.guid_of(number)} and len(rows) == 2 * 6 * 4
        assert rows.value.tolist() == expected.value.tolist() and rows.well.tolist() == expected.well.tolist()


def test_a_pattern_finds_files_in_order_and_no_file_makes_an_empty_table(plates, tmp_path):
    folder = pathlib.Path(plates[0][0]).parents[1]
    assert list(vxfileio.dask.catalog(folder / "**" / "*.vxd")[["path"]].compute().path.unique()) == plates[0]
    assert len(vxfileio.dask.catalog([]).compute()) == 0
    assert vxfileio.dask.catalog(folder / "*.none").compute().state.tolist() == ["unreadable"]
    for name in ("run1.vxd", "run[1].vxd"):
        (tmp_path / name).touch()
    assert vxfileio.dask.catalog(tmp_path / "run[1].vxd").compute().path.tolist() == [str(tmp_path / "run[1].vxd")]


# ---- Arrays ----------------------------------------------------------------------------------------------------------


@pytest.mark.parametrize("chunk_bytes", [1, 7000, 1 << 20])
def test_arrays_have_the_samples_of_each_well(chunk_bytes, plates):
    path = plates[0][0]
    with vx.open(path) as run:
        expected = run.recordings["Series", 2].read(scaled=True)
    arrays = vxfileio.dask.samples(path, ("Series", 2), scaled=True, chunk_bytes=max(chunk_bytes, 6 * 8 * 90))
    assert list(arrays) == list(expected)
    for well, array in arrays.items():
        assert array.dtype == np.float64 and max(array.chunks[0]) * 6 * 8 <= max(chunk_bytes, 6 * 8 * 90)
        np.testing.assert_array_equal(array.compute(), expected[well])
    well = campaign.WELLS[3]
    for key in (slice(100, 1700, 3), slice(None, None, -7), 5, [1, 1000, 3]):
        np.testing.assert_array_equal(arrays[well][key].compute(), expected[well][key])


def test_arrays_can_be_sent_to_other_processes(plates):
    arrays = vxfileio.dask.samples(plates[0][0], 1)
    total = dask.array.stack(list(arrays.values())).sum(axis=1).compute(scheduler="processes", num_workers=2)
    with vx.open(plates[0][0]) as run:
        assert total.tolist() == [array.sum() for array in run.recordings[1].read().values()]


def test_chunks_of_arrays_end_at_gaps_and_overlaps_and_wells_of_other_times_have_their_own(tmp_path):
    path = uneven_files.uneven(tmp_path / "uneven.vxd")
    for recording, chunks in ((0, {11: (3, 4), 12: (3, 4), 13: (4, 3)}), (1, {11: (3,), 12: (1,), 13: (0,)})):
        with vx.open(path) as run:
            expected = run.recordings[recording].read()
        arrays = vxfileio.dask.samples(path, recording)
        assert {well: array.chunks for well, array in arrays.items()} == {
            well: (lengths,) for well, lengths in chunks.items()}
        for well, array in arrays.items():
            assert pickle.loads(pickle.dumps(array)).compute().tolist() == expected[well].tolist()
            assert array[1:6].compute().tolist() == expected[well][1:6].tolist()
    shifted = uneven_files.write(tmp_path / "shifted.vxd", ({"task": b"Series", "number": 1, "Dose": 7}, [
        uneven_files.segment(13, 50, 0, 1, 2, 3, 4), uneven_files.segment(13, 50, 130, 5, 6)]))
    assert vxfileio.dask.samples(shifted, 0)[13].compute().tolist() == [1, 2, 3, 4, 5, 6]
    settings = vx.Settings()
    settings.RecordPlate.Data.Wells = [vx.PlateWell(WellID=12, Label="B7")]
    assert list(vxfileio.dask.samples(path, 0, ["B7"], settings=settings)) == ["B7"]
    with pytest.raises(vx.NoSuchWellError):
        vxfileio.dask.samples(path, 0, [14])
    for wells in ("B7", []):
        with pytest.raises(vx.UsageError, match="at least one well"):
            vxfileio.dask.samples(path, 0, wells)


def test_one_well_is_read_without_the_others_of_its_chunk(plates, monkeypatch):
    arrays = vxfileio.dask.samples(plates[0][0], 0)
    read, asked = vx.Recording.read, []
    monkeypatch.setattr(vx.Recording, "read",
                        lambda self, wells, *more: asked.append(wells) or read(self, wells, *more))
    arrays[13][200:300].compute()
    assert asked == [[13]]


# ---- A cluster -------------------------------------------------------------------------------------------------------


def slow_peak(recording):
    time.sleep(0.02)
    return peak(recording)


def test_a_cluster_whose_worker_is_killed_in_the_middle_has_the_same_result(plates, tmp_path):
    distributed = pytest.importorskip("distributed")
    paths, _ = plates
    expected = vxfileio.dask.map_recordings(paths, peak).compute()
    settings = {"temporary-directory": str(tmp_path), "distributed.scheduler.work-stealing": False}
    loopback = {"host": "127.0.0.1", "dashboard_address": "127.0.0.1:0", "worker_dashboard_address": "127.0.0.1:0"}
    with dask.config.set(settings), distributed.LocalCluster(
            n_workers=2, threads_per_worker=1, silence_logs=logging.CRITICAL, **loopback) as cluster:
        with distributed.Client(cluster) as client:
            table = vxfileio.dask.map_recordings(paths, slow_peak, files_per_partition=2)
            future = client.compute(table)
            workers = client.run(os.getpid)
            deadline = time.monotonic() + 60
            while not future.done() and time.monotonic() < deadline:
                finished = sum(map(len, client.has_what().values()))
                if finished >= 5:
                    break
                time.sleep(0.01)
            assert not future.done()
            os.kill(next(iter(workers.values())), signal.SIGKILL)
            result = future.result(timeout=120)
            assert set(client.run(os.getpid).values()) != set(workers.values())
    pandas.testing.assert_frame_equal(result.reset_index(drop=True), expected.reset_index(drop=True))
