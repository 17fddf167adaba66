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
#include "tools/vxfile/system/Failure.h"
#include "tools/vxfile/system/OpenInput.h"
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

std::string Neighbour(const std::string& path, std::string_view extension) {
    const std::string neighbour = fs::path(path).replace_extension(extension).string();
    std::error_code ignored;
    return fs::is_regular_file(neighbour, ignored) ? neighbour : "";
}

std::string SettingsBeside(const std::string& path, const std::string& guid) {
    const std::string bare = BareGuid(guid);
    if (bare.empty()) return {};
    const auto hasGuid = [&](const std::string& settings) {
        bool has = false;
        return FailureOf([&] { has = BareGuid(HeadOfDocument(settings).Guid) == bare; }).empty() && has;
    };
    const std::string namesake = Neighbour(path, vxfileio::kSettingsExtension);
    if (!namesake.empty() && hasGuid(namesake)) return namesake;
    const fs::path folder = fs::path(path).parent_path();
    std::vector<std::string> others;
    std::error_code error;
    for (fs::directory_iterator entry(folder.empty() ? "." : folder, error), end; !error && entry != end;
         entry.increment(error)) {
        if (entry->path().extension() == vxfileio::kSettingsExtension)
            others.push_back((folder / entry->path().filename()).string());
    }
    std::ranges::sort(others);
    const auto found = std::ranges::find_if(others, hasGuid);
    return found == others.end() ? "" : *found;
}

}  // namespace vxfile
