#include <pybind11/numpy.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>

#include "python/src/Convert.h"
#include "python/src/Parts.h"
#include "python/src/ResultsContent.h"
#include "vxfileio/settings/Settings.h"

/// @file
/// The columns of the tables of results, as arrays by their names. They have the names and the order of `vxfile table`.

namespace vxfileio::python {

namespace {

using settings::CSettings;

/// Makes texts for cells. Equal texts share one object.
class CTexts {
 public:
    /// Returns a text as a new reference. A text that isn't UTF-8 is read as Latin-1.
    PyObject* Get(const std::string& text) {
        const auto [place, isNew] = m_texts.try_emplace(text);
        if (isNew) {
            const auto size = static_cast<Py_ssize_t>(text.size());
            PyObject* made = PyUnicode_DecodeUTF8(text.data(), size, nullptr);
            if (made == nullptr) {
                PyErr_Clear();
                made = PyUnicode_DecodeLatin1(text.data(), size, nullptr);
            }
            if (made == nullptr) throw py::error_already_set();
            place->second = py::reinterpret_steal<py::object>(made);
        }
        return place->second.inc_ref().ptr();
    }

 private:
    std::unordered_map<std::string, py::object> m_texts;
};

/// Columns of the same length, in the order in which they were added.
class CColumns {
 public:
    explicit CColumns(std::size_t rows) : m_rows(static_cast<py::ssize_t>(rows)) {}

    /// Adds a column of numbers or flags. The caller fills it.
    template <class T>
    T* Add(const char* name) {
        py::array_t<T> column(m_rows);
        m_columns[name] = column;
        return column.mutable_data();
    }

    /// Adds a column of texts. The caller puts a new reference in each place.
    PyObject** AddTexts(const char* name) {
        py::array column(py::dtype("O"), m_rows);
        m_columns[name] = column;
        return static_cast<PyObject**>(column.mutable_data());
    }

    py::dict Take() { return m_columns; }

 private:
    py::ssize_t m_rows;
    py::dict m_columns;
};

/// A recording and its task.
struct CPlace {
    enTask task;
    const CResultsTask& results;
    std::int64_t number;
    const CResultsRecording& recording;
};

template <class Visit>
void ForEachRecording(const CResults& results, Visit visit) {
    for (const auto& [task, content] : results.Tasks) {
        std::int64_t number = 0;
        for (const CResultsRecording& recording : content.Recordings)
            visit(CPlace{task, content, number++, recording});
    }
}

template <class Visit>
void ForEachWell(const CResults& results, Visit visit) {
    ForEachRecording(results, [&](const CPlace& place) {
        for (const auto& [wellID, well] : place.recording.Wells)
            visit(place, wellID, well);
    });
}

template <class Count>
std::size_t CountRows(const CResults& results, Count count) {
    std::size_t rows = 0;
    ForEachWell(results, [&](const CPlace&, std::int32_t, const CResultsWell& well) { rows += count(well); });
    return rows;
}

/// The columns in front that each table has.
class CRecordingColumns {
 public:
    CRecordingColumns(CColumns& columns, const py::function& doseText)
        : m_task(columns.AddTexts("task")),
          m_recording(columns.Add<std::int64_t>("recording")),
          m_dose(columns.Add<std::uint64_t>("dose")),
          m_doseText(columns.AddTexts("dose_text")),
          m_textOf(doseText) {}

    void Put(std::size_t row, const CPlace& place) {
        m_task[row] = m_texts.Get(place.results.TaskName);
        m_recording[row] = place.number;
        m_dose[row] = place.recording.Dose;
        py::object& text = m_known[place.recording.Dose];
        if (!text) text = m_textOf(place.recording.Dose);
        m_doseText[row] = text.inc_ref().ptr();
    }

    PyObject* Text(const std::string& text) { return m_texts.Get(text); }

 private:
    PyObject** m_task;
    std::int64_t* m_recording;
    std::uint64_t* m_dose;
    PyObject** m_doseText;
    py::function m_textOf;
    std::unordered_map<std::uint64_t, py::object> m_known;
    CTexts m_texts;
};

/// Those in front that each table of wells has, and `analysed`, which is its last if there are settings.
class CWellColumns {
 public:
    CWellColumns(CColumns& columns, const py::function& doseText, const CSettings* settings)
        : m_front(columns, doseText),
          m_well(columns.Add<std::int64_t>("well")),
          m_label(columns.AddTexts("label")),
          m_settings(settings) {}

    void AddAnalysed(CColumns& columns) {
        if (m_settings != nullptr) m_analysed = columns.Add<bool>("analysed");
    }

    void Put(std::size_t row, const CPlace& place, std::int32_t wellID, const CResultsWell& well) {
        m_front.Put(row, place);
        m_well[row] = wellID;
        const bool isFromPlate = well.WellLabel.empty() && m_settings != nullptr;
        m_label[row] = Text(isFromPlate ? m_settings->RecordPlate.GetWellLabel(wellID) : well.WellLabel);
        if (m_analysed != nullptr)
            m_analysed[row] =
                m_settings->Analyzer.IsWellAnalyzed(place.task, static_cast<std::int32_t>(place.number), wellID);
    }

    PyObject* Text(const std::string& text) { return m_front.Text(text); }

 private:
    CRecordingColumns m_front;
    std::int64_t* m_well;
    PyObject** m_label;
    const CSettings* m_settings;
    bool* m_analysed = nullptr;
};

py::dict Responses(const CResultsContent& results, const py::function& doseText, const CSettings* settings) {
    CColumns columns(CountRows(
        results, [](const CResultsWell& well) { return well.Responses.size() + well.NormalizedResponses.size(); }));
    CWellColumns front(columns, doseText, settings);
    PyObject** const response = columns.AddTexts("response");
    auto* const value = columns.Add<double>("value");
    auto* const normalized = columns.Add<bool>("normalized");
    front.AddAnalysed(columns);
    PyObject** const mark = settings == nullptr ? nullptr : columns.AddTexts("mark");
    std::size_t row = 0;
    ForEachWell(results, [&](const CPlace& place, std::int32_t wellID, const CResultsWell& well) {
        for (const bool isNormalized : {false, true}) {
            for (const auto& [key, entry] : isNormalized ? well.NormalizedResponses : well.Responses) {
                front.Put(row, place, wellID, well);
                response[row] = front.Text(entry.Label);
                value[row] = entry.Value;
                normalized[row] = isNormalized;
                if (mark != nullptr)
                    mark[row] = front.Text(std::string(base::WordOf(settings->Analyzer.GetResponseMark(
                        place.task, static_cast<std::int32_t>(place.number), wellID, key))));
                ++row;
            }
        }
    });
    return columns.Take();
}

py::dict Means(const CResultsContent& results, const py::function& doseText) {
    std::size_t rows = 0;
    ForEachRecording(results, [&](const CPlace& place) { rows += place.recording.NormalizedResponses.size(); });
    CColumns columns(rows);
    CRecordingColumns front(columns, doseText);
    PyObject** const response = columns.AddTexts("response");
    auto* const mean = columns.Add<double>("mean");
    auto* const deviation = columns.Add<double>("sd");
    auto* const wells = columns.Add<std::uint64_t>("wells");
    std::size_t row = 0;
    ForEachRecording(results, [&](const CPlace& place) {
        for (const auto& [key, entry] : place.recording.NormalizedResponses) {
            front.Put(row, place);
            response[row] = front.Text(entry.Label);
            mean[row] = entry.normMean;
            deviation[row] = entry.normStdDev;
            wells[row++] = entry.Samples;
        }
    });
    return columns.Take();
}

/// Sets the time from one beat to the next. Returns whether there is none that a number holds.
bool IsIntervalMissing(const std::vector<std::int64_t>& times, std::size_t beat, std::int64_t& interval) {
    return beat == 0 || __builtin_sub_overflow(times[beat], times[beat - 1], &interval);
}

/// `missing` has whether an interval is missing; it is no column of the table.
py::dict Beats(const CResultsContent& results, const py::function& doseText, const CSettings* settings) {
    CColumns columns(CountRows(results, [](const CResultsWell& well) { return well.FPfastDetectionTimes.size(); }));
    CWellColumns front(columns, doseText, settings);
    auto* const beat = columns.Add<std::int64_t>("beat");
    auto* const time = columns.Add<std::int64_t>("time");
    auto* const interval = columns.Add<std::int64_t>("interval");
    front.AddAnalysed(columns);
    auto* const missing = columns.Add<bool>("missing");
    std::size_t row = 0;
    ForEachWell(results, [&](const CPlace& place, std::int32_t wellID, const CResultsWell& well) {
        const auto& times = well.FPfastDetectionTimes;
        for (std::size_t i = 0; i < times.size(); ++i, ++row) {
            front.Put(row, place, wellID, well);
            beat[row] = static_cast<std::int64_t>(i);
            time[row] = times[i];
            interval[row] = 0;
            missing[row] = IsIntervalMissing(times, i, interval[row]);
        }
    });
    return columns.Take();
}

py::dict Averages(const CResultsContent& results, const py::function& doseText, const CSettings* settings) {
    CColumns columns(CountRows(
        results, [](const CResultsWell& well) { return well.AverageExist() ? well.Average.size() : std::size_t{0}; }));
    CWellColumns front(columns, doseText, settings);
    auto* const sample = columns.Add<std::int64_t>("sample");
    auto* const time = columns.Add<std::int64_t>("time");
    auto* const value = columns.Add<double>("value");
    front.AddAnalysed(columns);
    std::size_t row = 0;
    ForEachWell(results, [&](const CPlace& place, std::int32_t wellID, const CResultsWell& well) {
        if (!well.AverageExist()) return;
        for (std::uint32_t i = 0; i < well.GetAveSamples(); ++i, ++row) {
            front.Put(row, place, wellID, well);
            sample[row] = i;
            time[row] = well.GetAveTimeStamp(i);
            value[row] = well.GetAveVoltage(i);
        }
    });
    return columns.Take();
}

}  // namespace

void BindTables(py::module_& module) {
    module.def("responses", &Responses, py::arg("results"), py::arg("dose_text"), py::arg("settings").none(true));
    module.def("means", &Means, py::arg("results"), py::arg("dose_text"));
    module.def("beats", &Beats, py::arg("results"), py::arg("dose_text"), py::arg("settings").none(true));
    module.def("averages", &Averages, py::arg("results"), py::arg("dose_text"), py::arg("settings").none(true));
}

}  // namespace vxfileio::python
