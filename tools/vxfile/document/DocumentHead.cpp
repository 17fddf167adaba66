#include "tools/vxfile/document/DocumentHead.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/system/Failure.h"
#include "tools/vxfile/system/OpenInput.h"
#include "vxfileio/helpers/File.h"
#include "vxfileio/xmlarchive/XmlDocument.h"

namespace vxfile {

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

std::string DifferenceOfRuns(const CRunFile& settings, const CRunFile& results) {
    const std::string guid = BareGuid(settings.guid);
    if (guid.empty() || BareGuid(results.guid).empty() || guid == BareGuid(results.guid)) return {};
    return settings.path + " isn't of the run of " + results.path + ": its Guid is " + Readable(settings.guid) +
           ", that of the results " + Readable(results.guid) + ".";
}

}  // namespace vxfile
