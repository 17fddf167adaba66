"""Pictures: what they show, by the data of their axes."""

import numpy as np
import pytest
import uneven_files
import vxfileio as vx

matplotlib = pytest.importorskip("matplotlib")
matplotlib.use("agg")
from matplotlib import pyplot  # noqa: E402
from vxfileio import plot  # noqa: E402

QT = "QT-Interval"
PLACES = {1: (0, 0), 2: (1, 2), 3: (1, 2), 4: (-1, -1), 5: (64, 0)}


@pytest.fixture(autouse=True)
def closed_figures():
    yield
    pyplot.close("all")


@pytest.fixture
def results():
    """Results of five wells with their ID times the mean of their recording, and its negative as normalised response.
    Two wells are at one place, two at places that no plate has."""
    settings = vx.Settings()
    settings.RecordPlate.Data.Wells = [vx.PlateWell(WellID=well, Label=f"W{well}", PlateRow=row, PlateColumn=column)
                                       for well, (row, column) in PLACES.items()]
    recordings = []
    for dose, mean in ((3000, 1.0), (0, 2.0)):
        wells = {well: vx.ResultsWell(WellLabel=f"W{well}", Responses={QT: vx.Response(Label=QT, Value=mean * well)},
                                      NormalizedResponses={QT: vx.Response(Label=QT, Value=-mean * well)})
                 for well in PLACES}
        means = {QT: vx.ResponseMean(Label=QT, normMean=mean, normStdDev=mean / 10, Samples=5)}
        recordings.append(vx.ResultsRecording(Dose=dose, Wells=wells, NormalizedResponses=means))
    made = vx.Results()
    made.Tasks = {"Series": vx.ResultsTask(TaskName="Series", Recordings=recordings),
                  "PreQC": vx.ResultsTask(TaskName="PreQC", Recordings=recordings[1:])}
    made.settings = settings
    return made


def test_a_trace_has_the_values_of_a_well_and_no_line_across_a_gap(tmp_path):
    run = vx.open(uneven_files.uneven(tmp_path / "uneven.vxd"), ticks_per_second=1000)
    axes = pyplot.subplots()[1]
    assert plot.trace(run.recordings[0], 11, ax=axes) is axes
    times, values = axes.lines[0].get_data()
    np.testing.assert_array_equal(times, [1, 1.1, 1.2, np.nan, 9, 9.1, 9.2, 9.3])
    samples = np.array([1, 2, 9, np.nan, 14, 15, 16, 17])
    np.testing.assert_array_equal(values, (samples - 1000) * 0.5)
    assert (axes.get_title(), axes.get_xlabel()) == ("11, Series 1, 7 pM", "time in s")
    part = plot.trace(run.recordings[0], 11, 1200, 9100)
    np.testing.assert_array_equal(part.lines[0].get_xdata(), [1.2, np.nan, 9])
    before = pyplot.get_fignums()
    with pytest.raises(vx.NoSuchWellError):
        plot.trace(run.recordings[0], 99)
    assert pyplot.get_fignums() == before


def test_a_plate_has_each_well_at_its_place_and_the_others_below(tmp_path, results):
    path = uneven_files.uneven(tmp_path / "uneven.vxd")
    for record, well in zip(results.settings.RecordPlate.Data.Wells, (11, 12, 13)):
        record.WellID = well
    by_settings = ["W1", "", "", "", "", "W2", "W3", "", ""]
    one = vx.Settings()
    one.RecordPlate.Data.Wells = [vx.PlateWell(WellID=12, Label="W2", PlateRow=0, PlateColumn=1)]
    for settings, titles in ((results.settings, by_settings), (None, ["11", "12", "13"]), (one, ["", "W2", "11", "13"])):
        figure = plot.plate(vx.open(path, settings=settings).recordings[0], 1100, 9100)
        assert [axes.get_title() for axes in figure.axes] == titles
        lines = figure.axes[titles.index("11") if "11" in titles else 0].lines
        np.testing.assert_array_equal(lines[0].get_xdata(), [1100, 1200, np.nan, 9000])
        assert figure.texts[0].get_text() == "Series 1, 7 pM"
    with pytest.raises(vx.UsageError, match="at least one well"):
        plot.plate(vx.open(path).recordings[0], wells="A1")


def test_a_heat_map_has_each_value_at_the_place_of_its_well(results):
    for recording, task, normalized, factor in ((0, "PreQC", False, 2), (1, "Series", True, -2),
                                                (0, "Series", False, 1)):
        axes = plot.heat_map(results, QT, recording, task=task, normalized=normalized)
        shown = axes.images[0].get_array().filled(np.nan)
        np.testing.assert_array_equal(shown / factor, [[1, np.nan, np.nan], [np.nan, np.nan, 2]])
    assert [text.get_text() for text in axes.get_yticklabels()] == ["A", "B"]
    places = [plot.place_of(1, label, None) for label in ("A1", "Z064", "Z65", "B123", "A1-ref", "xA1", "A0", "")]
    assert places == [(0, 0), (25, 63)] + 6 * [None]
    results.settings = None
    with pytest.raises(vx.UsageError, match="whose place is known"):
        plot.heat_map(results, QT, 1, task="PreQC")
    axes = plot.heat_map(results, QT)  # by the labels W1 to W5
    assert axes.images[0].get_array().filled(-1)[22].tolist() == [1, 2, 3, 4, 5]


def test_a_dose_response_has_means_in_the_order_of_doses_with_deviation_and_count(results):
    axes = plot.dose_response(results, QT)
    line, _, (bars,) = axes.containers[0]
    assert [point.tolist() for point in line.get_data()] == [[0, 3000], [2, 1]]
    assert [np.diff(bar[:, 1])[0] for bar in bars.get_segments()] == pytest.approx([0.4, 0.2])
    assert [text.get_text() for text in axes.texts] == ["n = 5", "n = 5"]
    assert [text.get_text() for text in axes.get_xticklabels()] == ["0 pM", "3 nM"]
    assert (axes.get_title(), axes.get_xlabel(), axes.get_ylabel()) == (QT, "dose", "mean of the normalised response")
    with pytest.raises(vx.UsageError, match="no means of Nothing"):
        plot.dose_response(results, "Nothing")
