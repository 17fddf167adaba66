#include "tools/vxfile/document/DocumentHead.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <span>
#include <system_error>
#include <vector>

#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Text.h"
#include "verify/Failure.h"
#include "verify/OpenInput.h"
#include "vxfileio/base/FileExtensions.h"
#include "vxfileio/helpers/File.h"
#include "vxfileio/xmlarchive/XmlDocument.h"

namespace vxfile {

namespace fs = std::filesystem;

CXmlFileHeader HeadOfDocument(const std::string& path) {
    gd_xml_stream::CFileBuffer file;
    if (file.Open(path, "r") != 0) throw CFailure("Can't open " + path + "; check the name and its rights.");
    CXmlFileArchive archive(&file, gd_xml_stream::kLoad, gd_xml_stream::kBlockSize);
    CXmlFileHeader header;
    archive.SkipProlog();
    header.Load(archive);
    return header;
}

bool EndsWithRoot(const std::string& path) {
    constexpr std::int64_t kLastBytes = 1024;
    vxfileio::helpers::CFile file;
    OpenInput(file, path);
    std::array<char, kLastBytes> bytes{};
    const std::int64_t start = std::max(file.Size() - kLastBytes, std::int64_t{0});
    const std::size_t size = file.ReadUpTo(start, std::as_writable_bytes(std::span(bytes)));
    const std::string endTag = "</" + std::string(vxfileio::xmlarchive::kRootElement) + '>';
    return std::string_view(bytes.data(), size).find(endTag) != std::string_view::npos;
}

std::string DifferenceOfRuns(const CRunFile& file, const CRunFile& other) {
    const std::string guid = BareGuid(file.guid);
    if (guid.empty() || BareGuid(other.guid).empty() || guid == BareGuid(other.guid)) return {};
    return file.path + " isn't of the run of " + other.path + ": its Guid is " + Readable(file.guid) +
           ", that of the other " + Readable(other.guid) + ".";
}

std::string GuidOfDocument(const std::string& path) {
    std::string guid;
    static_cast<void>(FailureOf([&] { guid = HeadOfDocument(path).Guid; }));
    return guid;
}

std::string FileOfRunBeside(const std::string& path, const std::string& guid, std::string_view extension,
                            std::string (*guidOf)(const std::string& path)) {
    const std::string bare = BareGuid(guid);
    if (bare.empty()) return {};
    const auto isOfRun = [&](const std::string& file) { return BareGuid(guidOf(file)) == bare; };
    std::string namesake = fs::path(path).replace_extension(extension).string();
    if (isOfRun(namesake)) return namesake;
    const fs::path folder = fs::path(path).parent_path();
    std::vector<std::string> others;
    std::error_code error;
    for (fs::directory_iterator entry(folder.empty() ? "." : folder, error), end; !error && entry != end;
         entry.increment(error)) {
        if (Lowered(entry->path().extension().string()) == extension)
            others.push_back((folder / entry->path().filename()).string());
    }
    std::ranges::sort(others);
    const auto found = std::ranges::find_if(others, isOfRun);
    return found == others.end() ? "" : *found;
}

std::string SettingsBeside(const std::string& path, const std::string& guid) {
    return FileOfRunBeside(path, guid, vxfileio::kSettingsExtension, GuidOfDocument);
}

}  // namespace vxfile
