#include "verify/workbook/WorkbookVerify.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "verify/Failure.h"
#include "verify/OpenInput.h"
#include "verify/Text.h"
#include "verify/workbook/CompoundLayout.h"
#include "verify/workbook/CompoundScan.h"
#include "vxfileio/helpers/FieldVisitors.h"

using namespace vxfileio::compound;

namespace vxfile {

namespace {

/// The names of the fields in the order of the file.
constexpr std::array<std::string_view, 18> kHeaderFields = {
    "signature",
    "class ID",
    "minor version",
    "major version",
    "byte order",
    "sector size",
    "mini sector size",
    "reserved",
    "directory sectors",
    "FAT sectors",
    "first directory sector",
    "transaction signature",
    "smallest stream outside the mini stream",
    "first mini FAT sector",
    "mini FAT sectors",
    "first DIFAT sector",
    "DIFAT sectors",
    "list of FAT sectors",
};

constexpr std::array<std::string_view, 13> kEntryFields = {
    "name",     "bytes of the name", "type",  "colour",       "left sibling", "right sibling", "child",
    "class ID", "state bits",        "times", "first sector", "size",         "reserved",
};

/// Collects the offset after each field of an object.
struct CFieldEnds {
    std::vector<std::size_t> ends;
    std::size_t end = 0;

    void operator()(const auto&... fields) { (Add(fields), ...); }

 private:
    void Add(const auto& field) {
        vxfileio::helpers::CFieldSize size;
        size(field);
        ends.push_back(end += size.Size());
    }
};

/// Counts the fields of an object.
struct CFieldCount {
    std::size_t count = 0;

    constexpr void operator()(const auto&... fields) { count += sizeof...(fields); }
};

template <class Object>
constexpr std::size_t CountFields() {
    CFieldCount count;
    const Object object;
    Object::Fields(object, count);
    return count.count;
}
static_assert(CountFields<StorageHeader>() == kHeaderFields.size(), "each field has a name");
static_assert(CountFields<DirectoryEntry>() == kEntryFields.size(), "each field has a name");

std::string Bytes(std::span<const std::byte> bytes) {
    return Quoted({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

std::vector<std::byte> BytesOf(const auto& fields) {
    vxfileio::helpers::CFieldSize size;
    size(fields);
    std::vector<std::byte> bytes(size.Size());
    vxfileio::helpers::CFieldStore store(bytes.data());
    store(fields);
    return bytes;
}

class CCompoundVerifier {
 public:
    CCompoundVerifier(const CCompoundScan& scan, CFindings& findings)
        : m_scan(scan), m_layout(static_cast<std::uint32_t>(scan.Stream().size())), m_findings(findings) {}

    void Verify() {
        JudgeFields<StorageHeader>("header", 0, kHeaderFields, BytesOf(m_layout.Header()));
        JudgeDirectory();
        JudgeTables();
        JudgeEnd();
    }

 private:
    void Compare(const std::string& where, std::uint64_t offset, std::span<const std::byte> found,
                 std::span<const std::byte> expected) {
        if (!std::ranges::equal(found, expected))
            m_findings.Add({where, static_cast<std::int64_t>(offset), Bytes(found), Bytes(expected),
                            "Spreadsheet programs may refuse the file, or show it differently."});
    }

    template <class Object>
    void JudgeFields(const std::string& where, std::uint64_t offset, std::span<const std::string_view> names,
                     std::span<const std::byte> expected) {
        const auto block = m_scan.Block(offset / kSectorSize);
        const auto found = std::span(block).subspan(offset % kSectorSize, expected.size());
        CFieldEnds fields;
        const Object object;
        Object::Fields(object, fields);
        std::size_t begin = 0;
        for (std::size_t i = 0; i < names.size(); begin = fields.ends[i++]) {
            const std::size_t size = fields.ends[i] - begin;
            Compare(where + " > " + std::string(names[i]), offset + begin, found.subspan(begin, size),
                    expected.subspan(begin, size));
        }
    }

    void JudgeDirectory() {
        const std::uint64_t offset = OffsetOf(m_layout.Header().firstDirectorySector);
        constexpr std::array kNames = {"directory > root", "directory > stream", "directory > third entry",
                                       "directory > fourth entry"};
        for (std::size_t i = 0; i < kNames.size(); ++i)
            JudgeFields<DirectoryEntry>(
                kNames[i], offset + i * kDirectoryEntrySize, kEntryFields,
                std::span(m_layout.Directory()).subspan(i * kDirectoryEntrySize, kDirectoryEntrySize));
    }

    void JudgeTables() {
        for (std::size_t i = 0; i < m_layout.FatSectors().size(); ++i)
            JudgeMarks("FAT", m_layout.FatSectors()[i], i * kMarksPerSector,
                       std::span(m_layout.Fat()).subspan(i * kMarksPerSector, kMarksPerSector));
        for (std::size_t i = 0; i < m_layout.DifatSectors().size(); ++i)
            JudgeMarks("DIFAT", m_layout.DifatSectors()[i], i * kMarksPerSector, m_layout.Difat(i));
        if (!m_layout.MiniFat().empty())
            JudgeMarks("mini FAT", m_layout.Header().firstMiniFatSector, 0, m_layout.MiniFat());
    }

    void JudgeMarks(const std::string& table, std::uint32_t sector, std::size_t first,
                    std::span<const std::uint32_t> marks) {
        const auto block = m_scan.Block(sector + std::uint64_t{1});
        for (std::size_t i = 0; i < marks.size(); ++i) {
            constexpr std::size_t kSize = sizeof(std::uint32_t);
            Compare(table + " > mark " + std::to_string(first + i), OffsetOf(sector) + i * kSize,
                    std::span(block).subspan(i * kSize, kSize), BytesOf(marks[i]));
        }
    }

    /// The rest of the stream's last sector is zeros, and the file has no other sectors.
    void JudgeEnd() {
        const std::size_t used = m_scan.Stream().size() % kSectorSize;
        if (used != 0) {
            const std::uint32_t last = m_layout.StreamSectors().back();
            const auto block = m_scan.Block(last + std::uint64_t{1});
            Compare("sector " + std::to_string(last) + " > padding", OffsetOf(last) + used,
                    std::span(block).subspan(used), std::vector<std::byte>(kSectorSize - used));
        }
        const auto size = static_cast<std::int64_t>((m_layout.Sectors() + 1) * kSectorSize);
        if (m_scan.Size() != size)
            m_findings.Add({"file", std::min(size, m_scan.Size()),
                            Counted(static_cast<std::uint64_t>(m_scan.Size()), "byte"), std::to_string(size),
                            m_scan.Size() < size ? "The file was cut." : "Bytes were added at its end."});
    }

    static std::uint64_t OffsetOf(std::uint32_t sector) { return (sector + std::uint64_t{1}) * kSectorSize; }

    const CCompoundScan& m_scan;
    CCompoundLayout m_layout;
    CFindings& m_findings;
};

}  // namespace

CFindings VerifyWorkbook(const std::string& path, const CReach& reach) {
    CFindings findings;
    vxfileio::helpers::CFile file;
    OpenInput(file, path);  // a file that can't be opened isn't a finding
    try {
        const CCompoundScan scan(path);
        CCompoundVerifier(scan, findings).Verify();
        JudgeRecords(scan.Stream(), findings, reach);
    } catch (const CFailure& failure) {
        findings.Add(
            {"file", 0, "tables that lead to no complete stream", "a complete stream Workbook", failure.what()});
        findings.MakeUnusable();
    }
    return findings;
}

}  // namespace vxfile
