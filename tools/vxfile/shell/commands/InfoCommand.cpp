#include <algorithm>
#include <iostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vxfile/document/XmlInfo.h"
#include "tools/vxfile/raw/RawInfo.h"
#include "tools/vxfile/raw/RefuseUnknown.h"
#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Page.h"
#include "tools/vxfile/report/Style.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/shell/Command.h"
#include "tools/vxfile/shell/FileKind.h"
#include "tools/vxfile/shell/PlateOptions.h"
#include "tools/vxfile/workbook/WorkbookInfo.h"
#include "verify/Failure.h"
#include "vxfileio/helpers/File.h"

namespace vxfile {

namespace {

constexpr CCommandText kInfoText = {
    .name = "info",
    .purpose = "Show what a file is and what it contains",
    .details =
        "Detects the kind of file by its content. Times are in the instrument's own unit. Counts the samples of a "
        "large raw data file only with --full, since that takes a walk through the whole file.",
    .example = "vxfile info run.vxd",
    .statuses =
        "  0  all files were read\n"
        "  1  some are cut or damaged; what is there was shown\n"
        "  2  some could not be read",
};

std::int64_t SizeOfFile(const std::string& path) {
    vxfileio::helpers::CFile file;
    return file.OpenForReading(path) ? file.Size() : 0;
}

class CInfoCommand : public CCommand {
 public:
    const CCommandText& Text() const override { return kInfoText; }

    std::vector<COption> Options() override {
        std::vector<COption> options = {
            {.names = "FILE", .target = &m_paths, .text = "Files to show", .isRequired = true},
            {.names = "--json", .target = &m_json, .text = "Print a JSON document for programs"},
            {.names = "--full", .target = &m_full, .text = "Count the samples of large raw data files, too"},
        };
        return Together(std::move(options), m_plate.Options(true));
    }

    int Run() override {
        CJson files = CJson::array();
        int status = kSound;
        for (const auto& path : m_paths) {
            CJson json = {{"path", Utf8(path)}};
            const std::string failure = FailureOf([&] { Tell(path, json); });
            if (!failure.empty()) Refuse(failure, json);
            status = std::max(status, StatusOf(json));
            files.push_back(std::move(json));
        }
        if (m_json) PrintJson(kInfoText.name, std::move(files));
        return status;
    }

 private:
    static int StatusOf(const CJson& json) {
        return json.contains("error") ? kTrouble : json.contains("damage") ? kFindings : kSound;
    }

    CPage PageOf(EFileKind kind, const std::string& path) const {
        switch (kind) {
            case EFileKind::RawData:
                return RawData(path);
            case EFileKind::Settings:
                return InfoOfSettings(path);
            case EFileKind::Results:
                return InfoOfResults(path);
            case EFileKind::Workbook:
                return InfoOfWorkbook(path);
            case EFileKind::Empty:
                throw CFailure(path + " is empty; there is nothing to show or to recover.");
            case EFileKind::Unknown:
                break;
        }
        throw CFailure(path +
                       " isn't a file of this system, or its beginning is damaged. If it is a raw data file, run "
                       "'vxfile recover' on it.");
    }

    CPage RawData(const std::string& path) const {
        const CPlateView view = m_plate.ViewOf(path);
        RefuseUnknown(view, path);
        std::ranges::for_each(view.doubts, Complain);
        return InfoOfRawData(path, m_full, true, view);
    }

    void Tell(const std::string& path, CJson& json) {
        const EFileKind kind = FileKindOf(path);
        const std::int64_t size = SizeOfFile(path);
        json["kind"] = WordOf(kind);
        json["size"] = size;
        CPage page = PageOf(kind, path);
        if (!m_json) {
            if (std::exchange(m_printed, true)) std::cout << '\n';
            std::cout << Bold(Readable(path)) << ": " << NameOf(kind) << ", " << SizeText(size) << '\n';
            page.Print();
        }
        json.update(page.Json());
    }

    /// Reports a file that can't be read. The others follow all the same.
    void Refuse(const std::string& sentence, CJson& json) const {
        json["error"] = sentence;
        if (!m_json) Complain(sentence);
    }

    std::vector<std::string> m_paths;
    bool m_json = false;
    bool m_full = false;
    CPlateOptions m_plate;
    bool m_printed = false;
};

}  // namespace

std::unique_ptr<CCommand> MakeInfoCommand() { return std::make_unique<CInfoCommand>(); }

}  // namespace vxfile
