#include "vxfileio/access/RecordingIndex.h"

#include <cstddef>
#include <utility>

#include "vxfileio/access/PieceReader.h"
#include "vxfileio/access/SelectionData.h"
#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/rawdata/RawDataErrors.h"

CRecordingIndex::CRecordingIndex(std::shared_ptr<const vxfileio::access::CIndexData> data) : m_data(std::move(data)) {}

const CRawDataRecordingHdr& CRecordingIndex::GetRecordingHdr() const noexcept { return m_data->Header(); }

const std::vector<CRawDataChannelInfo>& CRecordingIndex::GetWells() const noexcept { return m_data->wells; }

std::size_t CRecordingIndex::GetSegmentCount() const noexcept { return m_data->segments.Count(); }

CSegmentInfo CRecordingIndex::GetSegment(std::size_t number) const noexcept {
    const auto row = m_data->segments.Row(number);
    return {m_data->wells[row.well].ID, row.samples, row.timeFrom, row.timeTo, row.offset};
}

void CRecordingIndex::ReadSegment(std::size_t number, std::span<std::uint16_t> samples) const {
    const auto row = m_data->segments.Row(number);
    if (samples.size() != row.samples) throw CExcVXReader(vxfileio::rawdata::kWrongBuffer);
    vxfileio::access::ReadBytes(m_data->reader->File(), m_data->fileSize, row.offset, std::as_writable_bytes(samples));
}

std::uint64_t CRecordingIndex::GetCertainSamples() const noexcept { return m_data->certain; }

const std::string& CRecordingIndex::GetDamage() const noexcept { return m_data->damage; }

CSampleSelection CRecordingIndex::Select(const CSampleRequest& request) const {
    return CSampleSelection(std::make_shared<const vxfileio::access::CSelectionData>(m_data, request));
}
