#include "vxfileio/rawdata/RawDataHeaders.h"

#include <cstddef>

#include "vxfileio/rawdata/Layout.h"

CRawDataFileHdr MakeFileHdr(CRawDataFileHdr fields) {
    fields.HeaderID = vxfileio::rawdata::kFileTypeText;
    fields.FileVersion = vxfileio::rawdata::Layouts().back().version;
    return fields;
}

void CRawDataIndex::AddEntry(const CIndexEntry& entry) { m_entries.push_back(entry); }

void CRawDataIndex::Clear() noexcept { m_entries.clear(); }

std::int32_t CRawDataIndex::GetCount() const noexcept { return static_cast<std::int32_t>(m_entries.size()); }

const CIndexEntry* CRawDataIndex::GetEntry(std::int32_t index) const noexcept {
    const auto place = static_cast<std::size_t>(static_cast<std::uint32_t>(index));
    return place < m_entries.size() ? &m_entries[place] : nullptr;
}
