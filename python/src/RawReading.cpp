#include <pybind11/numpy.h>
#include <pybind11/stl.h>

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "python/src/Call.h"
#include "python/src/Convert.h"
#include "python/src/Parts.h"
#include "vxfileio/access/RawDataFile.h"

namespace vxfileio::python {

namespace {

/// Returns the time of a sample. Wraps around, since times in damaged files can exceed 64 bits.
std::int64_t TimeOf(const CSampleRun& run, std::uint64_t sample) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(run.TimeFrom) +
                                     sample * static_cast<std::uint64_t>(run.Interval));
}

/// A file with the path that its failures name.
struct CNamedFile {
    CRawDataFile file;
    std::string path;
};

struct CNamedIndex {
    CRecordingIndex index;
    std::string path;
};

struct CNamedSelection {
    CSampleSelection selection;
    std::string path;
};

CNamedFile OpenFile(const std::string& path) {
    return {Interruptible(path, [path] { return CRawDataFile(path); }), path};
}

CNamedIndex ReadIndex(const CNamedFile& named, std::size_t recording, bool isUnfinished, bool isUpToDamage) {
    const CIndexOptions options{.Unfinished = isUnfinished, .UpToDamage = isUpToDamage};
    const auto read = [file = named.file, recording, options] { return file.ReadIndex(recording, options); };
    return {Interruptible(named.path, read), named.path};
}

/// The segments of an index as an array with fields.
py::array SegmentsOf(const CNamedIndex& named) {
    py::array_t<CSegmentInfo> segments(static_cast<py::ssize_t>(named.index.GetSegmentCount()));
    CSegmentInfo* const to = segments.mutable_data();
    for (std::size_t i = 0; i < named.index.GetSegmentCount(); ++i)
        to[i] = named.index.GetSegment(i);
    return segments;
}

CNamedSelection Select(const CNamedIndex& named, const std::vector<std::int32_t>& wells, std::int64_t from,
                       std::int64_t to) {
    const CSampleRequest request{.WellIDs = wells, .From = from, .To = to};
    return {WithoutLock(named.path, [&] { return named.index.Select(request); }), named.path};
}

py::array RunsOf(const CNamedSelection& named, std::size_t well) {
    const auto& runs = named.selection.GetWells().at(well).Runs;
    return py::array_t<CSampleRun>(static_cast<py::ssize_t>(runs.size()), runs.data());
}

py::array_t<std::int64_t> TimesOf(const CNamedSelection& named, std::size_t well) {
    const CWellSamples& samples = named.selection.GetWells().at(well);
    py::array_t<std::int64_t> times(static_cast<py::ssize_t>(samples.Samples));
    std::int64_t* to = times.mutable_data();
    WithoutLock(named.path, [&] {
        for (const CSampleRun& run : samples.Runs) {
            for (std::uint64_t i = 0; i < run.Samples; ++i)
                *to++ = TimeOf(run, i);
        }
    });
    return times;
}

/// Fills one array per well. The arrays must be of this type, without gaps between elements and large enough.
template <class Sample>
void Read(const CNamedSelection& named, const std::vector<py::array_t<Sample, py::array::c_style>>& arrays) {
    std::vector<std::span<Sample>> buffers;
    buffers.reserve(arrays.size());
    for (auto array : arrays)
        buffers.emplace_back(array.mutable_data(), static_cast<std::size_t>(array.size()));
    const std::function<void()> check = IsMainThread() ? CheckSignals : [] {};
    WithoutLock(named.path, [&] {
        if constexpr (std::is_same_v<Sample, double>) {
            named.selection.ReadScaled(buffers, check);
        } else {
            named.selection.Read(buffers, check);
        }
    });
}

}  // namespace

void BindRawReading(py::module_& module) {
    PYBIND11_NUMPY_DTYPE_EX(CSegmentInfo, WellID, "well", Samples, "samples", TimeFrom, "time_from", TimeTo, "time_to",
                            Offset, "offset");
    PYBIND11_NUMPY_DTYPE_EX(CSampleRun, TimeFrom, "time_from", Interval, "interval", Samples, "samples", Offset,
                            "offset");

    py::class_<CNamedFile>(module, "RawDataFile")
        .def(py::init(&OpenFile), py::arg("path"))
        .def("header", [](const CNamedFile& named) { return named.file.GetFileHdr(); })
        .def("recordings", [](const CNamedFile& named) { return named.file.GetRecordings(); })
        .def(
            "find",
            [](const CNamedFile& named, const py::str& task, std::int32_t number) {
                return named.file.FindRecording(TextFromPython(task), number);
            },
            py::arg("task"), py::arg("number"))
        .def("index", &ReadIndex, py::arg("recording"), py::arg("unfinished"), py::arg("up_to_damage"));

    py::class_<CNamedIndex>(module, "RecordingIndex")
        .def("wells", [](const CNamedIndex& named) { return named.index.GetWells(); })
        .def("segments", &SegmentsOf)
        .def("certain_samples", [](const CNamedIndex& named) { return named.index.GetCertainSamples(); })
        .def("damage", [](const CNamedIndex& named) { return named.index.GetDamage(); })
        .def("select", &Select, py::arg("wells"), py::arg("first"), py::arg("last"));

    py::class_<CNamedSelection>(module, "SampleSelection")
        .def("wells",
             [](const CNamedSelection& named) {
                 py::list wells;
                 for (const CWellSamples& well : named.selection.GetWells())
                     wells.append(py::make_tuple(well.WellID, well.Samples, well.Missing));
                 return wells;
             })
        .def("runs", &RunsOf, py::arg("well"))
        .def("times", &TimesOf, py::arg("well"))
        .def("read", &Read<std::uint16_t>, py::arg("arrays").noconvert())
        .def("read_scaled", &Read<double>, py::arg("arrays").noconvert());
}

}  // namespace vxfileio::python
