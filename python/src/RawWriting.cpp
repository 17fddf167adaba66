#include <pybind11/numpy.h>
#include <pybind11/stl.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "python/src/Call.h"
#include "python/src/Convert.h"
#include "python/src/Parts.h"
#include "vxfileio/rawdata/RawDataWriter.h"

namespace vxfileio::python {

namespace {

/// A writer with the path that its failures name. Only one thread may call it at a time; the Python class has a lock.
struct CNamedWriter {
    rawdata::CRawDataWriter writer;
    std::string path;
};

std::unique_ptr<CNamedWriter> OpenWriter(const std::string& path, bool isNew, bool isStrict) {
    auto named = std::make_unique<CNamedWriter>();
    named->path = path;
    named->writer.SetStrict(isStrict);
    WithoutLock(path, [&] { isNew ? named->writer.OpenNew(path) : named->writer.Open(path); });
    return named;
}

/// Writes samples as one segment that begins at `start`.
void Write(CNamedWriter& named, std::int32_t well, std::int64_t start, std::int64_t tick,
           const py::array_t<std::uint16_t, py::array::c_style>& samples) {
    const auto* const data = samples.data();
    const auto after = static_cast<std::uint64_t>(samples.size() - 1) * static_cast<std::uint64_t>(tick);
    const auto stop = static_cast<std::int64_t>(static_cast<std::uint64_t>(start) + after);
    WithoutLock(named.path, [&] { named.writer.WriteData(well, start, stop, tick, data); });
}

}  // namespace

void BindRawWriting(py::module_& module) {
    py::class_<CNamedWriter>(module, "RawDataWriter")
        .def(py::init(&OpenWriter), py::arg("path"), py::arg("new"), py::arg("strict"))
        .def(
            "write_file_hdr",
            [](CNamedWriter& named, const CRawDataFileHdr& header) {
                WithoutLock(named.path, [&] { named.writer.WriteFileHdr(header); });
            },
            py::arg("header"))
        .def(
            "write_recording_hdr",
            [](CNamedWriter& named, const CRawDataRecordingHdr& header) {
                WithoutLock(named.path, [&] { named.writer.WriteRecordingHdr(header); });
            },
            py::arg("header"))
        .def("write_data", &Write, py::arg("well"), py::arg("start"), py::arg("tick"), py::arg("samples").noconvert())
        .def(
            "update_file_hdr",
            [](CNamedWriter& named, const std::string& task, const std::vector<std::string>& values) {
                WithoutLock(named.path, [&] { named.writer.UpdateFileHdr(task, values); });
            },
            py::arg("task"), py::arg("values"))
        .def("flush_to_disk",
             [](CNamedWriter& named) { return WithoutLock(named.path, [&] { return named.writer.FlushToDisk(); }); })
        .def("close", [](CNamedWriter& named) { WithoutLock(named.path, [&] { named.writer.Close(); }); })
        .def("write_error", [](const CNamedWriter& named) { return TextToPython(named.writer.GetWriteError()); });
}

}  // namespace vxfileio::python
