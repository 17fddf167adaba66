#include "XmlHeaderCheck.h"

#include <tuple>

#include "Difference.h"

void CheckXmlHeader(const CXmlFileHeader& read, const CXmlFileHeader& set, const std::string& fileType) {
    const auto withoutType = [](const CXmlFileHeader& h) {
        return std::tie(h.HeaderID, h.CompoundName, h.VexaprobeMode, h.ProgramVersion, h.FileVersion, h.RecordingDate,
                        h.RecordingDateString, h.FileName, h.Guid);
    };
    Expect(withoutType(read) == withoutType(set) && read.FileType == fileType, "The header of " + set.FileName);
}
