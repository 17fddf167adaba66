#include <gtest/gtest.h>
#include <vxfileio/frame/VXFileIO.h>

#include <string>

#include "tests/reference/Twin.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/SettingsCopy.h"
#include "tests/support/TempFolder.h"

// The reference files of settings and results are made by make_xml.py and read by read_xml.py, both without the
// library. The library must read the same content from each form of a document: what it reads is written back in its
// own form, byte for byte. check_forms.py checks that tags and members have the same names,
// and tests/python that every member has a field.

namespace {

/// Returns the bytes with the date of saving of the reference file, which otherwise is the current time.
std::string WithDate(std::string bytes) {
    const std::string number = "133512191990000000";
    const std::string tag = "<AnalyzingDate>";
    const std::string textTag = "</AnalyzingDate><AnalyzingDateString>";
    const std::size_t at = bytes.find(tag) + tag.size();
    bytes.replace(at, number.size(), number);
    EXPECT_EQ(bytes.substr(at + number.size(), textTag.size()), textTag);
    const std::string text = "2024-01-31 23:59:59";
    return bytes.replace(at + number.size() + textTag.size(), text.size(), text);
}

/// Reads a settings file, and hands all of it to the writer.
void HandOver(CVXFileIO& io, const std::string& name) {
    io.GetSettingsReader()->ReadFile(ReferencePath("xml/" + name + ".vxs"));
    CopySettings(*io.GetSettingsReader(), *io.GetSettingsWriter());
}

std::string Written(CISettingsWriter& writer) {
    const CTempFolder folder;
    writer.WriteFile(folder.Path("a.vxs"));
    return WithDate(ReadAll(folder.Path("a.vxs")));
}

std::string RewrittenResults(CVXFileIO& io, const std::string& name) {
    const CTempFolder folder;
    io.GetResultsReader()->ReadFile(ReferencePath("xml/" + name + ".vxr"));
    io.GetResultsWriter()->SetXmlFileHeader(*io.GetResultsReader()->GetXmlFileHeader());
    io.GetResultsWriter()->WriteFile(folder.Path("a.vxr"), *io.GetResultsReader()->GetResults());
    return ReadAll(folder.Path("a.vxr"));
}

/// Reads each file twice with the same reader, so that nothing of the first time must be left.
void ExpectSameBytes() {
    for (const std::string form : {"", "_indented", "_shuffled", "_sections"}) {
        CVXFileIO io;
        for (int round = 1; round <= 2; ++round) {
            HandOver(io, "settings" + form);
            EXPECT_EQ(io.GetSettingsReader()->GetReadError() + io.GetResultsReader()->GetReadError(), "") << form;
            EXPECT_EQ(Written(*io.GetSettingsWriter()), ReadAll(ReferencePath("xml/settings.vxs"))) << form << round;
            EXPECT_EQ(RewrittenResults(io, "results" + form), ReadAll(ReferencePath("xml/results.vxr")))
                << form << round;
        }
    }
}

TEST(XmlFilesTest, EveryFormIsWrittenBackInOurs) { ExpectSameBytes(); }

TEST(XmlFilesTest, ALocaleWithADecimalCommaHasNoEffect) {
    const CCommaLocale comma;
    ExpectSameBytes();
}

TEST(XmlFilesTest, AnOlderFileHasDefaultsForMissingSectionsAndMarksForActiveWells) {
    CVXFileIO older;
    HandOver(older, "settings_version_2");
    CVXFileIO newer;
    HandOver(newer, "settings");
    CXmlFileHeader header = *newer.GetSettingsReader()->GetXmlFileHeader();
    header.FileVersion = 2;
    CPropAnalyzer marks;
    marks.InitTask(enTask::Series, 2, {64, -3, 5});
    newer.GetSettingsWriter()->SetXmlFileHeader(header);
    newer.GetSettingsWriter()->SetRobotProperty({});
    newer.GetSettingsWriter()->SetAnalyzerProperty(marks);
    EXPECT_EQ(Written(*older.GetSettingsWriter()), Written(*newer.GetSettingsWriter()));
}

}  // namespace
