#include "tools/vxfile/report/SealCheck.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "tools/vxfile/report/Progress.h"
#include "tools/vxfile/report/Seal.h"
#include "tools/vxfile/report/Style.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/system/FileDigest.h"
#include "tools/vxfile/system/Hex.h"
#include "verify/OpenInput.h"

namespace vxfile {

using EState = CSealVerdict::EState;

/// A file next to its seal.
class CSealCheck::CComparison {
 public:
    explicit CComparison(const std::string& path) : m_path(path), m_reader(SealOf(path)) {
        OpenInput(m_file, path);
        m_fileSize = m_file.Size();
        m_size = std::min(m_fileSize, m_reader.Size());
        m_digest.emplace(m_file, path, m_size);
    }

    EState Run() {
        CProgress progress("Comparing " + m_path, m_reader.Size());
        CSealedPart part;
        while (m_reader.Next(part)) {
            Compare(part);
            progress.Reach(part.End());
        }
        if (IsOfAnotherFile()) return ReportOtherFile();
        if (m_size == m_reader.Size()) CompareSha256();
        if (m_fileSize > m_reader.Size())
            Add("file", m_reader.Size(), Counted(static_cast<std::uint64_t>(m_fileSize), "byte"),
                Counted(static_cast<std::uint64_t>(m_reader.Size()), "byte") + " when it was sealed",
                m_isChanged ? "The file grew after it was sealed, and sealed bytes changed. A writer that goes on "
                              "rewrites positions in headers, but never samples."
                            : "The file grew after it was sealed; what was sealed is as it was. Seal it again with "
                              "'vxfile seal --force' if the rest belongs to it.");
        if (m_isChanged) return EState::Changed;
        return m_fileSize > m_reader.Size() ? EState::Grown : EState::Intact;
    }

    std::int64_t SealedSize() const { return m_reader.Size(); }
    CFindings& Findings() { return m_findings; }

 private:
    /// Returns whether nothing agrees that two files of one instrument don't have in common. One part is too little to
    /// tell another file from a changed one.
    bool IsOfAnotherFile() const { return !m_hasSame && m_compared > 1; }

    EState ReportOtherFile() {
        m_findings = {};
        Add("file", 0,
            Counted(static_cast<std::uint64_t>(m_fileSize), "byte") +
                ", none of the samples or blocks that were sealed",
            Quoted(m_reader.Name()) + " of " + Counted(static_cast<std::uint64_t>(m_reader.Size()), "byte") +
                ", SHA-256 " + m_reader.Sha256(),
            "The seal belongs to another file, or this file was replaced. Look for the sealed file by its SHA-256; if "
            "this "
            "is the right one, seal it again with 'vxfile seal --force'.");
        return EState::OtherFile;
    }

    void Add(std::string where, std::int64_t offset, std::string found, std::string expected, std::string meaning) {
        m_findings.Add({std::move(where), offset, std::move(found), std::move(expected), std::move(meaning)});
    }

    void Compare(const CSealedPart& part) {
        const std::int64_t there = std::clamp(m_size - part.offset, std::int64_t{0}, part.length);
        const std::int64_t summed = std::min(there, part.SumLength());
        const bool isSegment = part.kind == CSealedPart::EKind::Segment;
        const CXxh3Sum sum = m_digest->HashNext(summed);
        const CXxh3Sum samplesSum = isSegment ? m_digest->HashNext(there - summed) : part.samplesSum;
        if (there < part.length) {
            m_isChanged = true;
            return Add(part.Name(), part.offset, Counted(static_cast<std::uint64_t>(there), "byte"),
                       Counted(static_cast<std::uint64_t>(part.length), "byte"),
                       "The file became shorter after it was sealed, by " +
                           Counted(static_cast<std::uint64_t>(m_reader.Size() - m_size), "byte") +
                           "; take it from a copy.");
        }
        NoteCompared(part, part.kind == CSealedPart::EKind::Segment ? samplesSum == part.samplesSum : sum == part.sum);
        if (sum != part.sum)
            AddChange(part.Name() + (isSegment ? " > header" : ""), part.offset, sum, part.sum,
                      isSegment ? "The header of this segment changed after it was sealed; take the file from a copy."
                                : "These bytes changed after the file was sealed; take it from a copy.");
        if (samplesSum != part.samplesSum)
            AddChange(part.Name() + " > samples", part.offset + part.headerLength, samplesSum, part.samplesSum,
                      "At least one of these samples changed after the file was sealed; take it from a copy.");
    }

    /// Headers of recordings aren't compared here: files of the same plan can have the same ones.
    void NoteCompared(const CSealedPart& part, bool isSame) {
        if (part.kind == CSealedPart::EKind::RecordingHeader) return;
        ++m_compared;
        m_hasSame = m_hasSame || isSame;
    }

    void AddChange(std::string where, std::int64_t offset, const CXxh3Sum& found, const CXxh3Sum& sealed,
                   std::string meaning) {
        m_isChanged = true;
        Add(std::move(where), offset, "XXH3 " + HexOf(found), "XXH3 " + HexOf(sealed), std::move(meaning));
    }

    /// A change that only this checksum shows was deliberate.
    void CompareSha256() {
        const std::string sha256 = m_digest->Sha256();
        if (m_isChanged || sha256 == m_reader.Sha256()) return;
        m_isChanged = true;
        Add("file", 0, "SHA-256 " + sha256, "SHA-256 " + m_reader.Sha256(),
            "The file changed after it was sealed in a way that its other checksums don't show; take it from a copy.");
    }

    std::string m_path;
    CSealReader m_reader;
    CFindings m_findings;
    vxfileio::helpers::CFile m_file;
    std::int64_t m_fileSize = 0;
    std::int64_t m_size = 0;  ///< The sealed bytes that the file has.
    std::optional<CFileDigest> m_digest;
    bool m_isChanged = false;
    std::size_t m_compared = 0;  ///< The number of parts that are whole and typical of the file,
    bool m_hasSame = false;      ///< and whether one of them is as it was.
};

std::string CSealVerdict::Words() const {
    switch (state) {
        case EState::Intact:
            return Green("as sealed");
        case EState::Grown:
            return Yellow("grown since it was sealed");
        case EState::Changed:
            return Red("changed since it was sealed");
        case EState::OtherFile:
            return Red("its seal belongs to another file");
        default:
            return Yellow("its seal can't be used");
    }
}

CJson CSealVerdict::Json() const {
    constexpr std::array<std::string_view, 5> kWords = {"intact", "grown", "changed", "other", "unusable"};
    return {{"path", Utf8(seal)},
            {"state", kWords[static_cast<std::size_t>(state)]},
            {"sealedSize", state == EState::Unusable ? CJson() : CJson(sealedSize)}};
}

CSealCheck::CSealCheck(const std::string& path) : m_seal(HasSeal(path) ? SealOf(path) : "") {
    if (m_seal.empty()) return;
    try {
        m_comparison = std::make_unique<CComparison>(path);
    } catch (const CSealFailure& failure) {
        m_failure = failure.what();
    }
}

CSealCheck::~CSealCheck() = default;

std::optional<CSealVerdict> CSealCheck::Finish(CFindings& findings) {
    if (m_seal.empty()) return std::nullopt;
    CSealVerdict verdict{.seal = m_seal};
    try {
        if (m_comparison) verdict.state = m_comparison->Run();
    } catch (const CSealFailure& failure) {
        m_failure = failure.what();
    }
    if (m_failure.empty()) {
        findings.Add(std::move(m_comparison->Findings()));
        verdict.sealedSize = m_comparison->SealedSize();
    } else {
        findings.Add(
            {"seal", -1, "a seal that can't be used", "a seal of version " + std::to_string(kSealVersion), m_failure});
    }
    return verdict;
}

}  // namespace vxfile
