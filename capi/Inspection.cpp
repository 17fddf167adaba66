#include "capi/Inspection.h"

#include <array>
#include <filesystem>
#include <system_error>
#include <vector>

#include "recovery/Recover.h"
#include "verify/Failure.h"
#include "verify/document/XmlVerify.h"
#include "verify/raw/RawVerify.h"
#include "verify/raw/RemarkText.h"
#include "verify/workbook/WorkbookVerify.h"
#include "vxfileio/helpers/ReplacingFile.h"

namespace vxfileio::capi {

void CCallbacks::Reach(std::int64_t done, std::int64_t total) const {
    if (m_callbacks.progress != nullptr && m_callbacks.progress(m_callbacks.user, done, total) != 0)
        throw CFailed{VX_CANCELLED, "The caller ended the work."};
}

void CCallbacks::Find(std::int64_t offset, const std::string& where, const std::string& meaning) const {
    if (m_callbacks.finding != nullptr &&
        m_callbacks.finding(m_callbacks.user, offset, where.c_str(), meaning.c_str()) != 0)
        throw CFailed{VX_CANCELLED, "The caller ended the work."};
}

namespace {

/// One finding, with its texts in the order of `vx_finding_text`.
struct CFound {
    std::int64_t offset = -1;
    std::int64_t end = -1;
    std::array<std::string, 4> texts;
};

class CReport final : public CObject {
 public:
    bool IsOpen() const noexcept override { return m_isOpen; }

    void Verify(const std::string& path, std::int32_t kind, const CCallbacks& callbacks);
    void Recover(const std::string& source, const std::string& target, const vx_recover_options& options,
                 const CCallbacks& callbacks);

    const CFound& At(std::int64_t index) const { return m_found[TakeIndex(index, m_found.size())]; }
    vx_report_summary Summary() const;

 private:
    void AddRemarks(const recovery::CRemarks& remarks, const char* found);
    void Deliver(const CCallbacks& callbacks) const;

    std::vector<CFound> m_found;
    std::int64_t m_count = 0;
    std::int64_t m_bytes = 0;
    bool m_isSound = false;
    bool m_isUsable = true;
    bool m_isOpen = false;
};

void CReport::Verify(const std::string& path, std::int32_t kind, const CCallbacks& callbacks) {
    constexpr std::array kVerify = {vxfile::VerifyRawData, vxfile::VerifySettings, vxfile::VerifyResults,
                                    vxfile::VerifyWorkbook};
    const auto verify = kVerify[TakeIndex(kind, kVerify.size())];
    constexpr std::uint32_t kCallsPerReport = 256;
    const auto reach = [&, calls = std::uint32_t{0}](std::int64_t done, std::int64_t total) mutable {
        if (calls++ % kCallsPerReport == 0) callbacks.Reach(done, total);
    };
    try {
        const vxfile::CFindings findings = verify(path, reach);
        for (const auto& finding : findings.Kept())
            m_found.push_back({finding.offset, -1, {finding.where, finding.found, finding.expected, finding.meaning}});
        m_count = static_cast<std::int64_t>(findings.Count());
        m_isUsable = findings.IsUsable();
    } catch (const vxfile::CFailure& failure) {
        throw CFailed{VX_ERROR_FILE, failure.what()};
    }
    m_isSound = m_count == 0;
    Deliver(callbacks);
    m_isOpen = true;
}

void CReport::Deliver(const CCallbacks& callbacks) const {
    for (const CFound& found : m_found)
        callbacks.Find(found.offset, found.texts[VX_FINDING_WHERE], found.texts[VX_FINDING_MEANING]);
}

/// Counts recordings from 1, as the checks do.
std::string PlaceOf(const recovery::CRemark& remark) {
    std::string place;
    if (remark.recording) place += "recording " + std::to_string(*remark.recording + std::uint64_t{1}) + " > ";
    if (remark.wellID) place += "well " + std::to_string(*remark.wellID) + " > ";
    return place + "bytes " + std::to_string(remark.from) + " to " + std::to_string(remark.to);
}

void CReport::AddRemarks(const recovery::CRemarks& remarks, const char* found) {
    for (const auto& remark : remarks.first) {
        m_found.push_back({remark.from, remark.to, {PlaceOf(remark), found, "", vxfile::TextOf(remark)}});
    }
    m_count += static_cast<std::int64_t>(remarks.first.size() + remarks.more);
}

/// Returns a path in the form that the standard library takes. Throws if the system's form of it can't be made.
std::filesystem::path PathOf(const std::string& path) {
    try {
        return std::u8string(path.begin(), path.end());
    } catch (const std::filesystem::filesystem_error&) {
        throw CFailed{VX_ERROR_ARGUMENT, "The path isn't UTF-8: " + path};
    }
}

[[noreturn]] void RefuseWrite(const helpers::CReplacingFile& file) { throw CFailed{VX_ERROR_WRITE, file.WriteError()}; }

void CReport::Recover(const std::string& source, const std::string& target, const vx_recover_options& options,
                      const CCallbacks& callbacks) {
    using enum helpers::CReplacingFile::ERule;
    helpers::CFile file;
    if (!file.OpenForReading(source)) throw CFailed{VX_ERROR_FILE, "Cannot open file " + source};
    std::error_code ignored;
    Require(!std::filesystem::equivalent(PathOf(source), PathOf(target), ignored), "The target is the source.");
    if (options.replace == 0 && std::filesystem::exists(PathOf(target), ignored))
        throw CFailed{VX_ERROR_WRITE, target + " is there already; choose another name, or set `replace`."};
    helpers::CReplacingFile whole;
    if (!whole.Create(target, options.replace != 0 ? Replace : New)) RefuseWrite(whole);
    const auto reach = [&, total = file.Size()](std::int64_t position) { callbacks.Reach(position, total); };
    const auto write = [&](std::span<const std::byte> bytes) {
        if (!whole.File().Append({bytes})) RefuseWrite(whole);
    };
    const recovery::COptions how{.keepCut = options.keep_cut != 0, .searched = reach, .saved = reach};
    const recovery::CReport report = recovery::Recover(recovery::CFileInput(file), how, write);
    if (report.bytes == 0) throw CFailed{VX_ERROR_FILE, "There is nothing to save in " + source};
    m_bytes = report.bytes;
    m_isSound = report.IsComplete();
    AddRemarks(report.losses, "lost");
    AddRemarks(report.doubts, "in doubt");
    Deliver(callbacks);  // before the file is there: a callback can still end the work
    if (!whole.Commit()) RefuseWrite(whole);
    m_isOpen = true;
}

vx_report_summary CReport::Summary() const {
    vx_report_summary summary{};
    summary.findings = m_count;
    summary.kept = static_cast<std::int64_t>(m_found.size());
    summary.bytes = m_bytes;
    summary.is_sound = m_isSound ? 1 : 0;
    summary.is_usable = m_isUsable ? 1 : 0;
    return summary;
}

}  // namespace

}  // namespace vxfileio::capi

using namespace vxfileio::capi;

int VX_CALL vx_verify(vx_report** out, const char* path, int32_t kind, const vx_callbacks* callbacks) {
    return Make<CReport>(
        out, [&](CReport& report) { report.Verify(TakeText(path, "The path"), kind, CCallbacks(callbacks)); });
}

int VX_CALL vx_recover(vx_report** out, const char* source, const char* target, const vx_recover_options* options,
                       const vx_callbacks* callbacks) {
    return Make<CReport>(out, [&](CReport& report) {
        const vx_recover_options taken = options == nullptr ? vx_recover_options{} : TakeStruct(options);
        report.Recover(TakeText(source, "The source"), TakeText(target, "The target"), taken, CCallbacks(callbacks));
    });
}

int VX_CALL vx_report_get_summary(vx_report* report, vx_report_summary* summary) {
    return With<CReport>(report, [&](CReport& object) { PutStruct(object.Summary(), summary); });
}

int VX_CALL vx_report_get_finding(vx_report* report, int64_t index, vx_finding* finding) {
    return With<CReport>(report, [&](CReport& object) {
        vx_finding values{};
        values.offset = object.At(index).offset;
        values.end = object.At(index).end;
        PutStruct(values, finding);
    });
}

int VX_CALL vx_report_get_text(vx_report* report, int64_t index, int32_t text, char* buffer, int64_t* size) {
    return With<CReport>(report, [&](CReport& object) {
        const auto& texts = object.At(index).texts;
        PutText(texts[TakeIndex(text, texts.size())], buffer, size);
    });
}
