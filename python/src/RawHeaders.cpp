#include <type_traits>
#include <variant>

#include "python/src/Parts.h"
#include "python/src/Records.h"
#include "vxfileio/rawdata/RawDataFormat.h"

namespace vxfileio::python {

namespace {

/// Adds an attribute for each cell that holds a member by its key. Counts and lists of channels are no attributes: the
/// channels are.
template <class Header, class Cells>
void AddCells(CRecordClass<Header>& made, const Cells& cells) {
    for (const auto& cell : cells) {
        std::visit(
            [&](auto member) {
                if constexpr (std::is_member_object_pointer_v<decltype(member)>) made.Add(cell.key, member);
            },
            cell.member);
    }
}

}  // namespace

void BindRawHeaders(py::module_& module) {
    CRecordClass<CRawDataChannelInfo>(module, "RawDataChannelInfo")
        .Add("ID", &CRawDataChannelInfo::ID)
        .Add("ADZero", &CRawDataChannelInfo::ADZero)
        .Add("UnitsPerAD", &CRawDataChannelInfo::UnitsPerAD)
        .Add("Ticks", &CRawDataChannelInfo::Ticks);

    CRecordClass<CRawDataRecordingHdr> recording(module, "RawDataRecordingHdr");
    AddCells(recording, rawdata::kRecordingCells);
    recording.Add("WellChannels", rawdata::kWells).Add("AuxChannels", rawdata::kAux);

    CRecordClass<CRawDataFileHdr> file(module, "RawDataFileHdr");
    file.Add("HeaderID", &CRawDataFileHdr::HeaderID);
    AddCells(file, rawdata::kFileCells);
    module.def(
        "make_file_hdr", [](const CRawDataFileHdr& fields) { return MakeFileHdr(fields); }, py::arg("fields"));
}

}  // namespace vxfileio::python
