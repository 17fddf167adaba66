#include "vxfileio/access/RawDataFile.h"

#include <utility>

#include "vxfileio/access/IndexBuilder.h"
#include "vxfileio/access/Internals.h"
#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/rawdata/RawDataErrors.h"

using namespace vxfileio::rawdata;
using vxfileio::access::CInternals;

CRawDataFile::CRawDataFile(const std::string& path) {
    auto reader = std::make_shared<CRawDataReader>();
    reader->Open(path);
    m_reader = std::move(reader);
}

const CRawDataFileHdr& CRawDataFile::GetFileHdr() const noexcept { return *m_reader->GetFileHdr(); }

const std::vector<CRawDataRecordingHdr>& CRawDataFile::GetRecordings() const noexcept { return m_reader->Recordings(); }

std::optional<std::size_t> CRawDataFile::FindRecording(const std::string& taskName,
                                                       std::int32_t recording) const noexcept {
    std::optional<std::size_t> found;
    const auto& headers = GetRecordings();
    const auto isFinished = [&](std::size_t i) { return headers[i].FPosRecordingData != kUnset; };
    for (std::size_t i = 0; i < headers.size(); ++i) {
        if (headers[i].TaskName != taskName || headers[i].Recording != recording) continue;
        if (!found || isFinished(i) || !isFinished(*found)) found = i;
    }
    return found;
}

CRecordingIndex CRawDataFile::ReadIndex(std::size_t recording, const CIndexOptions& options) const {
    return CInternals::ReadIndex(*this, recording, options, {});
}

CRecordingIndex CInternals::ReadIndex(const CRawDataFile& file, std::size_t recording, const CIndexOptions& options,
                                      const std::function<void()>& check) {
    if (recording >= file.GetRecordings().size()) throw CExcVXReader(kNoSuchRecording);
    const bool isFinished = file.GetRecordings()[recording].FPosRecordingData != kUnset;
    if (!isFinished && !options.Unfinished) throw CExcVXReader(kUnfinished);
    CIndexBuilder builder(file.m_reader, recording, check);
    auto index = isFinished ? builder.BuildFinished() : builder.BuildUnfinished();
    if (!index->damage.empty() && !options.UpToDamage) throw CExcVXReader(index->damage);
    return CRecordingIndex(std::move(index));
}
