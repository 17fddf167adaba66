#include "tools/vxfile/document/DocumentHead.h"

#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/system/Failure.h"
#include "vxfileio/xmlarchive/XmlArchive.h"

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

std::string DifferenceOfRuns(const CRunFile& settings, const CRunFile& results) {
    const std::string guid = BareGuid(settings.guid);
    if (guid.empty() || BareGuid(results.guid).empty() || guid == BareGuid(results.guid)) return {};
    return settings.path + " isn't of the run of " + results.path + ": its Guid is " + Readable(settings.guid) +
           ", that of the results " + Readable(results.guid) + ".";
}

}  // namespace vxfile
