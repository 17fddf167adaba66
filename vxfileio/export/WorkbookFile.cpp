#include "vxfileio/export/WorkbookFile.h"

namespace YExcel {

namespace {

constexpr const char* kStreamName = "Workbook";

}  // namespace

bool WorkbookFile::Create(const std::string& path) {
    m_storage.Create(path);
    return m_storage.IsOpen() && m_storage.MakeFile(kStreamName) == CompoundStorage::kSuccess;
}

bool WorkbookFile::Store(std::span<const std::byte> stream) {
    return m_storage.WriteFile(kStreamName, stream) == CompoundStorage::kSuccess && m_storage.IsComplete();
}

std::string WorkbookFile::Close() {
    m_storage.Close();
    return m_storage.WriteError();
}

}  // namespace YExcel
