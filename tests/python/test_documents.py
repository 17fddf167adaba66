"""Settings and results, compared with the second reader in tests/reference/xml and with `vxfile table`."""

import copy
import gc
import pickle
import re
import sys
import warnings

import numpy as np
import pytest
import read_xml
import vxfileio as vx
from conftest import REFERENCE, files_of_at_most

XML = REFERENCE / "xml"
SETTINGS, RESULTS = XML / "settings.vxs", XML / "results.vxr"

# ---- The text twin of a file, from the package's attributes ----------------------------------------------------------


ENTRIES = {"wells": read_xml.PLATE_WELL, "responses": read_xml.RESPONSE, "response means": read_xml.RESPONSE_MEAN}


def as_read(kind, value):
    """Returns a value as the second reader has it, with the bytes of texts as characters."""
    if kind in ENTRIES:
        return [list(fields_of(ENTRIES[kind], entry)) for entry in (value.values() if hasattr(value, "values") else value)]
    if kind == "marks":
        return list(marks_of(value))
    if isinstance(value, str):
        return value.encode("utf-8", "surrogateescape").decode("latin-1")
    return [as_read("", item) for item in value] if isinstance(value, tuple) else value


def marks_of(tasks):
    for task, recordings in tasks.items():
        yield f"{task}: {len(recordings)} recordings"
        for number, wells in enumerate(recordings):
            for well, marks in wells.items():
                words = " ".join(f"{response} {mark}" for response, mark in marks.Responses.items())
                yield f"{task} {number} well {well}: Analyze {int(marks.Analyze)} {words}"


def fields_of(table, *objects):
    for tag, kind, _ in table:
        yield tag, kind, as_read(kind, next(getattr(thing, tag) for thing in objects if hasattr(thing, tag)))


def lines_of(name, table, *objects):
    return read_xml.shown(name, fields_of(table, *objects))


def settings_lines(settings):
    compound = next(iter(settings.RecordPlate.Data.Compounds), vx.PlateCompound())
    for name, table in read_xml.SECTIONS.items():
        section = getattr(settings, name.removeprefix("Property"))
        objects = [section]
        if name == "PropertyRobot":
            objects = [section, section.RobotConfig]
        if name == "PropertyRecordPlate":
            objects = [section.Data, compound]
        yield from lines_of(name, table, *objects)
    for check in settings.QualityCheck.QualityChecks.values():
        yield from lines_of("QC", read_xml.QUALITY_CHECK, check)


class KeyedWell:
    """A well with the ID that is its key."""

    def __init__(self, well_id, well):
        self.WellID, self.well = well_id, well

    def __getattr__(self, name):
        return getattr(self.well, name)


def results_lines(results):
    for task in results.Tasks.values():
        yield f"Task {read_xml.show(as_read('text', task.TaskName))}"
        for recording in task.Recordings:
            yield from lines_of("Recording", read_xml.RECORDING, recording)
            for well_id, well in recording.Wells.items():
                yield from lines_of("Well", read_xml.RESULTS_WELL, KeyedWell(well_id, well))


def twin_of(document):
    lines = list(lines_of("Header", read_xml.HEADER, document.Header))
    return lines + list(settings_lines(document) if isinstance(document, vx.Settings) else results_lines(document))


@pytest.mark.parametrize("path", sorted([*XML.glob("*.vxs"), *XML.glob("*.vxr")]), ids=lambda path: path.name)
def test_every_attribute_is_that_of_the_second_reader(path):
    document = vx.open(path, partial=True)
    assert twin_of(document) == path.with_suffix(".txt").read_text().splitlines()


def test_every_public_member_is_an_attribute():
    """The members are those that the headers declare."""
    headers = [*(REFERENCE.parents[1] / "vxfileio" / "settings").glob("*.h"),
               *(REFERENCE.parents[1] / "vxfileio" / "results").glob("*.h"),
               REFERENCE.parents[1] / "vxfileio" / "rawdata" / "RawDataHeaders.h"]
    member = re.compile(r"^    (?!static|using|friend|return)(?:const )?[\w:<>, ]+ ([A-Za-z]\w*)(?: = .*|\{.*\})?;", re.MULTILINE)
    checked = 0
    for header in headers:
        text = re.sub(r"//.*", "", header.read_text())
        for name, bases, body in re.findall(r"^(?:class|struct) (?:VXFILEIO_API )?(\w+)([^;{]*)\{(.*?)^\};", text,
                                            re.MULTILINE | re.DOTALL):
            made = getattr(vx, name.removeprefix("C") if name not in vx.__dict__ else name, None)
            if made is None:
                continue
            for found in member.findall(body.split("private:")[0]):
                assert isinstance(getattr(made, found), property), f"{name}::{found}"
                checked += 1
    assert checked > 150


# ---- Lists, maps and what was taken from them ------------------------------------------------------------------------


def test_what_was_taken_from_a_list_stays_valid_after_it_is_replaced():
    plate = vx.open(SETTINGS).RecordPlate
    wells = plate.Data.Wells[1:]  # not the first
    before = [well.to_dict() for well in wells]
    for _ in range(50):
        plate.Data.Wells = [vx.PlateWell(WellID=number, Label="x" * 40) for number in range(100)]
    gc.collect()
    assert [well.to_dict() for well in wells] == before
    assert plate.Data.to_dict()["Wells"] == tuple(well.to_dict() for well in plate.Data.Wells)
    wells[0].Label = "changed"
    assert plate.Data.Wells[0].Label == "x" * 40


def test_what_was_taken_stays_valid_after_its_owner_changed_and_was_deleted():
    results = vx.open(RESULTS)
    task = results.Tasks["Analyze"]
    well = task.Recordings[0].Wells[64]
    response = well.Responses["Na-Amplitude"]
    results.Tasks = {}
    del results, task
    gc.collect()
    assert (well.WellLabel, response.Value) == ("A1", 0.5)
    well.Responses = {}
    assert response.Value == 0.5 and not well.Responses


def test_replacing_a_section_keeps_what_was_taken_from_the_old_one():
    settings = vx.open(SETTINGS)
    old, wells = settings.RecordPlate.Data, settings.RecordPlate.Data.Wells
    settings.RecordPlate = vx.PropRecordPlate()
    assert old.Wells == () and wells[0].Label == "A1"


def test_objects_that_are_held_survive_a_refused_value_and_one_of_their_own():
    settings = vx.open(SETTINGS)
    plate, before = settings.RecordPlate, settings.to_dict()
    with pytest.raises(TypeError):
        settings.RecordPlate = 1
    settings.RecordPlate = plate
    settings.RecordPlate = settings.RecordPlate
    assert settings.to_dict() == before and plate.Data.Wells[0].Label == "A1"


def test_mappings_end_with_their_last_reference_and_keep_their_owner_until_then():
    tasks = vx.open(RESULTS).Tasks
    assert sys.getrefcount(tasks) == 2 and tasks["Analyze"].TaskName == "Analyze"


def test_objects_in_lists_are_changed_in_place():
    results = vx.open(RESULTS)
    results.Tasks[vx.Task.Analyze].Recordings[0].Wells[64].Responses["Na-Slope"].Value = 7
    assert 7 in results.responses["value"].values


def test_lists_and_maps_cannot_be_changed_without_effect():
    settings = vx.open(SETTINGS)
    for container in (settings.RecordPlate.Data.Series, settings.RecordPlate.Data.Wells):
        with pytest.raises(AttributeError):
            container.append(1)
    with pytest.raises(TypeError):
        settings.QualityCheck.QualityChecks["PreQC"] = vx.QualityCheckRecord()
    with pytest.raises(TypeError, match="expected a mapping"):
        settings.QualityCheck.QualityChecks = [vx.QualityCheckRecord()]


def test_sharing_a_list_between_objects_copies_it():
    one, other = vx.open(SETTINGS), vx.Settings()
    other.RecordPlate.Data.Wells = one.RecordPlate.Data.Wells
    one.RecordPlate.Data.Wells[0].Label = "changed"
    assert other.RecordPlate.Data.Wells[0].Label == "A1"
    one.RecordPlate.Data.Wells = one.RecordPlate.Data.Wells[:1]
    assert [well.Label for well in one.RecordPlate.Data.Wells] == ["changed"]


@pytest.mark.parametrize("name, value, error", [
    ("CleanerID", 1.5, TypeError), ("CleanerID", 2**31, ValueError), ("CleanerID", "1", TypeError),
    ("IPAddress", b"x", TypeError), ("IPAddress", None, TypeError), ("TroughMediumNames", "text", TypeError),
    ("StockPlateIDL8x12", "AB", ValueError), ("StockPlateIDL8x12", "\u0100", ValueError),
    ("Range", (1, 2), ValueError), ("Range", range(7), ValueError), ("Range", 1, TypeError), ("StockPlates", 1, TypeError),
    ("Unknown", 1, AttributeError), ("RecordPlate", 1, TypeError),
])
def test_values_of_another_type_are_refused(name, value, error):
    config = vx.RobotConfig()
    before = config.to_dict()
    with pytest.raises(error):
        setattr(config, name, value)
    assert config.to_dict() == before
    with pytest.raises(error):
        vx.RobotConfig(**{name: value})


def test_bools_and_words_are_strict():
    analyzer, plate = vx.PropAnalyzer(), vx.PlateData()
    for value in (None, 1, "yes"):
        with pytest.raises(TypeError):
            analyzer.FPfastAutoAdjust = value
    analyzer.FPfastAutoAdjust = np.bool_(False)
    assert analyzer.FPfastAutoAdjust is False
    plate.Layout = "8x12"
    assert plate.Layout is vx.PlateLayout.L8x12 and plate.Layout == "8x12" and plate.Layout.number == 1
    for word in ("9x9", ""):
        with pytest.raises(ValueError):
            plate.Layout = word
    for layout, columns in (("8x12", 12), ("Ostrel6x9", 9)):
        made = vx.PropRecordPlate(Data=vx.PlateData(Layout=layout))
        made.BuildPlateMap()
        made.Data.Layout = vx.PlateData().Layout  # not defined, so it has no map
        made.BuildPlateMap()
        assert len(made.Map.ColumnLabels) == columns


def test_bytes_that_are_not_utf8_survive(tmp_path):
    settings = vx.Settings()
    settings.Notebook.Comment = b"\xb5 \xff \xc3\xa4".decode("utf-8", "surrogateescape")
    settings.RecordPlate.Data.PlateID = "\xff"
    settings.save(tmp_path / "a.vxs")
    again = vx.open(tmp_path / "a.vxs")
    assert again.Notebook.Comment.encode("utf-8", "surrogateescape") == b"\xb5 \xff \xc3\xa4"
    assert again.RecordPlate.Data.PlateID == "\xff"


def test_saving_a_text_that_a_nul_cuts_warns(tmp_path):
    settings = vx.Settings()
    settings.Notebook.Comment = "before\0after"
    with pytest.warns(vx.WriteWarning, match="Notebook/Comment: the text has a NUL"):
        settings.save(tmp_path / "a.vxs")
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        with pytest.raises(vx.WriteWarning):
            settings.save(tmp_path / "b.vxs")
    for name in ("a.vxs", "b.vxs"):
        assert vx.open(tmp_path / name).Notebook.Comment == "before"


@pytest.mark.parametrize("path", [SETTINGS, RESULTS], ids=lambda path: path.name)
def test_pickling_keeps_everything_and_what_was_changed(path):
    document = vx.open(path)
    document.Header.Guid = "changed"
    for copied in (copy.copy(document), copy.deepcopy(document), pickle.loads(pickle.dumps(document)),
                   pickle.loads(pickle.dumps(document, 0))):
        assert twin_of(copied) == twin_of(document) and copied == document and copied.path == document.path
        copied.path = "elsewhere"
        assert document.path == str(path)
    section = vx.open(SETTINGS).RecordPlate
    assert pickle.loads(pickle.dumps(section)).to_dict() == section.to_dict()


def test_dicts_of_records_have_no_records_within():
    recording = vx.open(RESULTS).to_dict()["Tasks"]["Analyze"]["Recordings"][0]
    assert recording["Wells"][64]["Responses"]["Na-Amplitude"]["Value"] == 0.5
    assert type(recording["Wells"]) is dict and type(recording["Wells"][64]["Responses"]) is dict


def test_records_compare_by_their_attributes_and_show_them():
    assert vx.Response(Label="QT-Interval", Value=1) == vx.Response(Label="QT-Interval", Value=1) != vx.Response()
    assert vx.Response() != vx.ResponseMean() and vx.Response() != 5
    assert repr(vx.Response(Label="<b>", Value=0.5)) == "Response(Label='<b>', Value=0.5)"
    assert "&lt;b&gt;" in vx.Response(Label="<b>")._repr_html_()
    settings, results = vx.open(SETTINGS), vx.open(RESULTS)
    assert repr(settings) == f"<vxfileio.Settings {str(SETTINGS)!r}: plate 'A', 4 wells, 2 doses>"
    assert repr(results) == f"<vxfileio.Results {str(RESULTS)!r}: Analyze with 3 recordings, Nil with 0 recordings>"
    assert repr(vx.Results()) == "<vxfileio.Results None: no tasks>"
    assert "<td>Analyze</td><td>0</td><td>1 \xb5M</td><td>3</td>" in results._repr_html_()
    assert "<td>FMax</td>" in settings._repr_html_() and "QualityChecks" not in settings._repr_html_()
    assert (vx.RawDataFileHdr.__doc__, vx.RawDataFileHdr.PlateID.__doc__) == (
        "The header of a raw data file.", "str: Plate identifier.")
    for document in (settings, results):
        (repr(document) + document._repr_html_() + repr(document.Header)).encode("utf-8")


# ---- Tables ----------------------------------------------------------------------------------------------------------


@pytest.mark.parametrize("settings", [None, SETTINGS], ids=["alone", "with settings"])
@pytest.mark.parametrize("what", ["responses", "means", "beats", "averages"])
def test_tables_are_those_of_the_program(what, settings, vxfile, tmp_path):
    pandas = pytest.importorskip("pandas")
    import io

    path = tmp_path / "results.vxr"  # without one of the labels, which only the settings have
    path.write_bytes(RESULTS.read_bytes().replace(b"<WellLabel>A1<", b"<WellLabel><"))
    arguments = ["table", path, "--what", what, *([] if settings is None else ["--settings", settings])]
    types = {"label": str, "dose_text": str, "interval": "Int64"}
    theirs = pandas.read_csv(io.BytesIO(vxfile(*arguments)), dtype=types, keep_default_na=False,
                             na_values={"interval": [""], "value": ["nan"]})
    ours = getattr(vx.open(path, settings=settings), what)
    assert len(ours) > 0
    pandas.testing.assert_frame_equal(ours, theirs, check_dtype=False)


def test_only_the_first_beat_has_no_interval(tmp_path):
    pandas = pytest.importorskip("pandas")
    results = vx.open(RESULTS)
    recording = next(iter(results.Tasks.values())).Recordings[0]
    recording.Wells = {7: vx.ResultsWell(FPfastDetectionTimes=[5, 5, 3, 2**31 - 1])}
    path = tmp_path / "beats.vxr"
    results.save(path)
    beats = vx.open(path).beats
    intervals = beats[beats["well"] == 7]["interval"]
    assert intervals.isna().tolist() == [True, False, False, False]
    assert intervals.tolist()[1:] == [0, -2, 2**31 - 4] and isinstance(intervals.dtype, pandas.Int64Dtype)


def test_tables_have_the_texts_of_the_objects(tmp_path):
    pytest.importorskip("pandas")
    document = RESULTS.read_bytes().replace(b"<WellLabel>A1<", b"<WellLabel>A\xb5<")
    (tmp_path / "latin.vxr").write_bytes(document)
    results = vx.open(tmp_path / "latin.vxr")
    row = results.responses.iloc[0]
    assert row["label"] == "A\udcb5"
    assert results.Tasks[row["task"]].Recordings[0].Wells[row["well"]].WellLabel == row["label"]


@pytest.mark.skipif(not sys.getallocatedblocks(), reason="this Python doesn't count its objects")
def test_tables_release_their_texts():
    pytest.importorskip("pandas")
    results = vx.open(RESULTS)
    for turn in range(402):
        assert results.responses["task"][0] == "Analyze"
        if turn == 1:
            gc.collect()
            before = sys.getallocatedblocks()
    gc.collect()
    assert sys.getallocatedblocks() - before < 400


def test_tables_of_nothing_have_their_columns():
    assert list(vx.Results().responses.columns) == ["task", "recording", "dose", "dose_text", "well", "label", "response",
                                                    "value", "normalized"]


def test_dose_texts_have_the_largest_unit_without_a_fraction():
    doses = {0: "0 pM", 999: "999 pM", 1000: "1 nM", 1500: "1500 pM", 10**7: "10 \xb5M", 10**15: "1000 M"}
    assert {dose: vx.dose_text(dose) for dose in doses} == doses
    assert [vx.dose_text(dose) for dose in (np.uint64(2**63), np.int64(-5))] == ["9223372036854775808 pM", "-5 pM"]
    with pytest.raises(TypeError, match="as an integer"):
        vx.dose_text(1.5)
    with pytest.raises(ValueError, match="to 18446744073709551615, not 18446744073709551616"):
        vx.dose_text(2**64)


# ---- Saving ----------------------------------------------------------------------------------------------------------


@pytest.mark.parametrize("path", [SETTINGS, RESULTS], ids=lambda path: path.name)
def test_saved_documents_are_read_back(path, tmp_path):
    document, saved = vx.open(path), tmp_path / "saved"
    document.save(saved)
    again = vx.open(saved)
    ours, theirs = twin_of(document), twin_of(again)
    assert len(ours) == len(theirs)
    changed = {mine.split(":")[0].strip() for mine, other in zip(ours, theirs) if mine != other}
    assert changed <= {"AnalyzingDate"}


def test_saving_never_replaces_a_file_unless_asked(tmp_path):
    saved, document = tmp_path / "saved", vx.open(RESULTS)
    saved.write_bytes(b"old")
    with pytest.raises(FileExistsError) as raised:
        document.save(saved)
    assert raised.value.filename == str(saved) and saved.read_bytes() == b"old"
    document.save(saved, overwrite=True)
    assert vx.open(saved) == document


def test_a_refused_save_leaves_no_file(tmp_path):
    settings, saved = vx.open(SETTINGS), tmp_path / "saved"
    for compound in (-2, 99):
        with pytest.raises(vx.UsageError):
            settings.save(saved, compound=compound)
    with pytest.raises(FileNotFoundError):
        settings.save(tmp_path / "no folder" / "a.vxs")
    for document in (settings, vx.open(RESULTS)):
        with files_of_at_most(100), pytest.raises(OSError) as raised:
            document.save(saved)
        assert raised.value.errno == 27 and raised.value.filename == str(saved)  # EFBIG
    assert list(tmp_path.iterdir()) == []


def test_workbooks_are_exported_and_never_replaced(tmp_path):
    results = vx.open(RESULTS)
    with pytest.raises(vx.UsageError, match="needs the settings"):
        results.export(tmp_path / "run.xls")
    results.export(tmp_path / "run.xls", SETTINGS)
    results.settings = vx.open(SETTINGS)
    names = {path.name for path in tmp_path.iterdir()}
    assert names == {"run.xls", "run-A1.xls"} and {vx.kind_of(tmp_path / name) for name in names} == {"workbook"}
    results.settings.RecordPlate.Data.Wells[1].State = results.settings.RecordPlate.Data.Wells[0].State
    results.export(tmp_path / "b.xls", SETTINGS)  # these, not its own
    assert {path.name for path in tmp_path.iterdir()} == names | {"b.xls", "b-A1.xls"}
    for name in ("run.xls", "run-A1.xls", "run-B1.xls"):
        for path in tmp_path.iterdir():
            path.unlink()
        (tmp_path / name).write_bytes(b"old")
        with pytest.raises(FileExistsError, match=name):
            results.export(tmp_path / "run.xls")
        assert {path.name: path.read_bytes() for path in tmp_path.iterdir()} == {name: b"old"}


def test_the_names_of_workbooks_are_those_of_the_library(tmp_path):
    settings = vx.open(SETTINGS)
    first = next(well for well in settings.RecordPlate.Data.Wells if well.Label == "A1")
    twin, outside = copy.deepcopy(first), copy.deepcopy(first)
    twin.Label = "the same ID"
    outside.WellID, outside.Label = 99, "../outside"
    settings.RecordPlate.Data.Wells = [outside, first, twin]
    (tmp_path / "-A1").touch()
    with pytest.raises(FileExistsError, match="-A1"):
        vx.open(RESULTS).export(tmp_path / ".xls", settings)
    for overwrite in (False, True):
        for path in tmp_path.iterdir():
            path.write_bytes(b"old") if overwrite else path.unlink()
        with pytest.raises(vx.FileError, match="Not the name of a file"):
            vx.open(RESULTS).export(tmp_path / ".xls", settings, overwrite=overwrite)
        assert {path.name: path.stat().st_size > 1000 for path in tmp_path.iterdir()} == {".xls": True, "-A1": True}


def test_damaged_documents_are_errors_unless_partial(tmp_path):
    cut = tmp_path / "cut.vxr"
    cut.write_bytes(RESULTS.read_bytes()[:2500])
    with pytest.raises(vx.DamagedFileError, match="ends at offset 2500") as raised:
        vx.open(cut)
    assert raised.value.filename == str(cut)
    results = vx.open(cut, partial=True)
    assert "offset 2500" in results.read_error and len(results.beats) > 0
    assert results.Header == vx.open(RESULTS).Header and results.Header.CompoundName == "C1"
    cut.write_bytes(SETTINGS.read_bytes()[:2500])
    assert "offset 2500" in vx.open(cut, partial=True).read_error
    older = SETTINGS.read_bytes().replace(b"Version>3<", b"Version>2<")
    cut.write_bytes(older.replace(b"<Dose>1000<", b"<Dose>1000000000000000000<"))
    with pytest.raises(vx.DamagedFileError, match=r"Series\[0\]/Dose: 1000000000000000000 pM is too large"):
        vx.open(cut)
    assert vx.open(cut, partial=True).RecordPlate.Data.Series[0] == 10**18


def test_labels_name_wells_of_raw_data_with_or_without_zeros():
    settings = vx.Settings()
    settings.RecordPlate.Data.Wells = [vx.PlateWell(WellID=well, Label=label) for well, label in
                                       ((1, "A1"), (2, "B07"), (96, "C101"), (97, "C11"), (2, "B07"))]
    recording = vx.open(REFERENCE / "several_recordings.vxd", settings=settings).recordings[0]
    assert list(recording.samples("A01")) == list(recording.samples("A1")) == [1, 2, 3, 6]
    assert list(recording.read(["B7", 2, "A1"])) == ["B7", "A1"] and recording.samples("C0101").size == 0
    assert list(recording.to_dataframe(["B7", "A1"])["label"]) == ["B07"] * 3 + ["A1"] * 4
    with pytest.raises(vx.NoSuchWellError, match="no well 'C1'"):
        recording.samples("C1")
