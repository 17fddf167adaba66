#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <iostream>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "tools/vxfile/raw/RawParts.h"
#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Json.h"
#include "tools/vxfile/report/Progress.h"
#include "tools/vxfile/report/Seal.h"
#include "tools/vxfile/report/Style.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/shell/Command.h"
#include "tools/vxfile/shell/FileKind.h"
#include "tools/vxfile/system/FileDigest.h"
#include "tools/vxfile/system/Output.h"
#include "verify/OpenInput.h"

namespace vxfile {

namespace {

namespace fs = std::filesystem;

using vxfileio::helpers::CFile;

constexpr CCommandText kSealText = {
    .name = "seal",
    .purpose = "Write checksums of a file beside it, so that verify finds every later change",
    .details =
        "Writes FILE.seal, a JSON document with the SHA-256 of the file and the XXH3 of each of its parts. From then "
        "on "
        "verify compares the file with its seal and names the well and the times that changed, and recover marks what "
        "the seal proves. A seal says what the file was, not that it was sound. The file itself is only read.",
    .example = "vxfile seal run.vxd",
    .statuses =
        "  0  all files are sealed\n"
        "  1  all are sealed, but some are unfinished (seal them again with --force once the recording is closed) or\n"
        "     damaged (see 'vxfile verify')\n"
        "  2  some aren't sealed",
};

/// The block size for files that aren't raw data files.
constexpr std::int64_t kSealedBlock = std::int64_t{64} << 10;

/// What changes when a file is overwritten or replaced.
struct CFileState {
    std::uintmax_t size = 0;
    fs::file_time_type written;

    bool operator==(const CFileState&) const = default;
};

CFileState StateOf(const std::string& path) {
    std::error_code none;
    return {fs::file_size(path, none), fs::last_write_time(path, none)};
}

/// A file to seal.
struct CSource {
    const std::string& path;
    std::int64_t size = 0;
    CFileState before;  ///< The state before it was read.
};

/// The data of a seal.
struct CSealed {
    EFileKind kind = EFileKind::Unknown;
    std::int64_t size = 0;
    std::string sha256;
    std::size_t segments = 0;
    std::vector<std::string> doubts;
};

class CSealCommand : public CCommand {
 public:
    const CCommandText& Text() const override { return kSealText; }

    std::vector<COption> Options() override {
        return {
            {.names = "FILE", .target = &m_files, .text = "The files to seal", .isRequired = true},
            {.names = "--force",
             .target = &m_force,
             .text = "Replace a seal that exists; run verify first, or it hides what changed"},
            {.names = "--json", .target = &m_json, .text = "Print a JSON document for programs"},
        };
    }

    int Run() override {
        int status = kSound;
        CJson files = CJson::array();
        for (const auto& path : m_files) {
            CSealed sealed;
            const std::string failure = FailureOf([&] { sealed = Seal(path); });
            if (!m_json) Print(path, sealed, failure);
            files.push_back(failure.empty() ? ToJson(path, sealed) : CJson{{"path", Utf8(path)}, {"error", failure}});
            status = std::max(status, !failure.empty() ? kTrouble : sealed.doubts.empty() ? kSound : kFindings);
        }
        if (m_json) PrintJson(kSealText.name, std::move(files));
        return status;
    }

 private:
    CSealed Seal(const std::string& path) const {
        CSealed sealed;
        sealed.kind = FileKindOf(path);
        if (!IsOurs(sealed.kind))
            throw CFailure(path + " is " + ArticleAndNameOf(sealed.kind) + "; only files of this system are sealed.");
        RefuseSealThatExists(path);
        const CFileState before = StateOf(path);
        if (sealed.kind != EFileKind::RawData) {
            CFile file;
            OpenInput(file, path);
            const std::int64_t size = file.Size();
            CFileDigest digest(file, path, size);
            Write({path, size, before}, digest, sealed, [&](const auto& take) { ForEachBlock(size, take); });
            return sealed;
        }
        const CRawScan scan(path);
        CFileDigest digest(scan.File(), path, scan.Size());  // first: it reads ahead of the walk over the headers
        const CRawParts parts(scan);
        sealed.segments = parts.Segments();
        sealed.doubts = parts.Doubts();
        Write({path, scan.Size(), before}, digest, sealed, [&](const auto& take) { parts.ForEach(take); });
        return sealed;
    }

    void RefuseSealThatExists(const std::string& path) const {
        if (!m_force && HasSeal(path))
            throw CFailure(SealOf(path) +
                           " exists, and a new seal would hide what changed since; run 'vxfile verify', "
                           "then replace it with --force.");
    }

    static void ForEachBlock(std::int64_t size, const std::function<void(CSealedPart&)>& take) {
        for (std::int64_t offset = 0; offset < size; offset += kSealedBlock) {
            CSealedPart part;
            part.offset = offset;
            part.length = std::min(kSealedBlock, size - offset);
            take(part);
        }
    }

    /// Writes the seal of a file with this digest, whose parts `forEach` delivers.
    void Write(const CSource& source, CFileDigest& digest, CSealed& sealed, const auto& forEach) const {
        const auto& [path, size, before] = source;
        sealed.size = size;
        COutput output({.path = SealOf(path), .sources = {path}, .replace = m_force});
        CSealWriter seal([&](std::string_view text) { output.Write(text); },
                         Readable(fs::path(path).filename().string()), WordOf(sealed.kind), size);
        CProgress progress("Sealing " + path, size);
        forEach([&](CSealedPart& part) {
            part.sum = digest.HashNext(part.SumLength());
            if (part.kind == CSealedPart::EKind::Segment)
                part.samplesSum = digest.HashNext(part.length - part.headerLength);
            seal.Add(part);
            progress.Reach(part.End());
        });
        sealed.sha256 = digest.Sha256();
        seal.Finish(sealed.sha256);
        if (StateOf(path) != before) throw CFailure(path + " is being written; seal it when its writer has closed it.");
        output.Finish();
        COutput* const outputs[] = {&output};
        COutput::Commit(outputs);
    }

    static void Print(const std::string& path, const CSealed& sealed, const std::string& failure) {
        if (!failure.empty()) return Complain(failure);
        std::cout << Readable(path) << ": " << NameOf(sealed.kind) << ", " << Green("sealed") << ", "
                  << Counted(static_cast<std::uint64_t>(sealed.size), "byte");
        if (sealed.kind == EFileKind::RawData) std::cout << ", " << Counted(sealed.segments, "segment");
        std::cout << '\n';
        for (const auto& doubt : sealed.doubts)
            std::cout << "  " << Yellow("sealed as it is") << ": " << doubt << "; see 'vxfile verify'\n";
    }

    static CJson ToJson(const std::string& path, const CSealed& sealed) {
        CJson json = {{"path", Utf8(path)},  {"kind", WordOf(sealed.kind)}, {"seal", Utf8(SealOf(path))},
                      {"size", sealed.size}, {"sha256", sealed.sha256},     {"doubts", sealed.doubts}};
        if (sealed.kind == EFileKind::RawData) json["segments"] = sealed.segments;
        return json;
    }

    std::vector<std::string> m_files;
    bool m_force = false;
    bool m_json = false;
};

}  // namespace

std::unique_ptr<CCommand> MakeSealCommand() { return std::make_unique<CSealCommand>(); }

}  // namespace vxfile
