#include "capi/Raw.h"
#include "vxfileio/rawdata/RecordingFit.h"

namespace vxfileio::capi {

namespace {

class CPlan final : public COpened<CRecordingFit> {};

const CCellFit& CellAt(CPlan& plan, std::int64_t index) {
    const auto& cells = plan.Get().Cells;
    return cells[TakeIndex(index, cells.size())];
}

}  // namespace

}  // namespace vxfileio::capi

using namespace vxfileio::capi;

int VX_CALL vx_plan_check(vx_plan** out, const vx_recording_header* header, const int32_t* wells,
                          const int32_t* ad_zeros, const double* units_per_ad, const int64_t* intervals, int64_t count,
                          int32_t file_version) {
    return Make<CPlan>(out, [&](CPlan& plan) {
        const auto recording = TakeRecordingHdr(header, wells, ad_zeros, units_per_ad, intervals, count);
        plan.Open(std::make_unique<CRecordingFit>(CheckRecordingFit(recording, file_version)));
    });
}

int VX_CALL vx_plan_get_result(vx_plan* plan, vx_plan_result* result) {
    return With<CPlan>(plan, [&](CPlan& object) {
        const CRecordingFit& fit = object.Get();
        vx_plan_result values{};
        values.wells = fit.Wells;
        values.wells_that_fit = fit.WellsThatFit;
        values.cells = static_cast<std::int64_t>(fit.Cells.size());
        values.fits = fit.Fits() ? 1 : 0;
        PutStruct(values, result);
    });
}

int VX_CALL vx_plan_get_text(vx_plan* plan, char* buffer, int64_t* size) {
    return With<CPlan>(plan, [&](CPlan& object) {
        const CRecordingFit& fit = object.Get();
        PutText(fit.Fits() ? std::string() : fit.Text(), buffer, size);
    });
}

int VX_CALL vx_plan_get_split(vx_plan* plan, int64_t* wells, int64_t* count) {
    return With<CPlan>(plan, [&](CPlan& object) { PutArray(object.Get().Split, wells, count); });
}

int VX_CALL vx_plan_get_cell(vx_plan* plan, int64_t index, vx_plan_cell* cell) {
    return With<CPlan>(plan, [&](CPlan& object) {
        const CCellFit& fit = CellAt(object, index);
        vx_plan_cell values{};
        values.room = fit.Room;
        values.needed = fit.Needed;
        values.wells_that_fit = fit.WellsThatFit;
        values.is_list = fit.IsList ? 1 : 0;
        PutStruct(values, cell);
    });
}

int VX_CALL vx_plan_get_key(vx_plan* plan, int64_t index, char* buffer, int64_t* size) {
    return With<CPlan>(plan, [&](CPlan& object) { PutText(CellAt(object, index).Key, buffer, size); });
}
