#include <gtest/gtest.h>
#include <vxfileio/frame/VXFileIO.h>

#include <string>

#include "tests/reference/Twin.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/SettingsCopy.h"
#include "tests/support/TempFolder.h"

// The reference files of settings and results are made by make_xml.py and read by read_xml.py, both without the
// library. The library must read the same content from each form of a document: what it reads is written back in its
// own form, byte for byte. That tags and members have the same names is checked by check_forms.py.

namespace {

/// Has a name for every member of these classes. With one more member this doesn't compile: add a name here, and a
/// field to the form of the class.
[[maybe_unused]] void NameEveryMember(const CXmlFileHeader& header, const CPropControl& control,
                                      const CPropNotebook& notebook, const CPropRobot& robot, const CPropWashIn& washIn,
                                      const CPropRecording& recording, const CPropAnalyzer& analyzer,
                                      const WellAnalysis& mark, const QualityCheckRecord& check, const PlateWell& place,
                                      const CResultsWell& well, const CResponse& response, const CResponseMean& mean,
                                      const CResultsRecording& results, const CResultsTask& task) {
    [[maybe_unused]] const auto& [h1, h2, h3, h4, h5, h6, h7, h8, h9, h10] = header;
    [[maybe_unused]] const auto& [c1, c2, c3, c4] = control;
    [[maybe_unused]] const auto& [n1, n2, n3, n4, n5, n6, n7, n8, n9, n10, n11, n12] = notebook;
    [[maybe_unused]] const auto& [b1, b2, b3, b4] = robot;
    [[maybe_unused]] const auto& [i1] = washIn;
    [[maybe_unused]] const auto& [r1, r2, r3, r4, r5, r6, r7, r8, r9] = recording;
    [[maybe_unused]] const auto& [a1, a2, a3, a4, a5, a6, a7, a8, a9, a10, a11, a12, a13, a14, a15, a16, a17, a18, a19,
                                  a20] = analyzer;
    [[maybe_unused]] const auto& [k1, k2] = mark;
    [[maybe_unused]] const auto& [q1, q2, q3, q4, q5, q6, q7, q8, q9, q10, q11, q12, q13, q14, q15, q16, q17, q18, q19,
                                  q20, q21, q22, q23, q24] = check;
    [[maybe_unused]] const auto& [p1, p2, p3, p4, p5, p6] = place;
    [[maybe_unused]] const auto& [w1, w2, w3, w4, w5, w6, w7, w8, w9, w10, w11, w12, w13, w14, w15, w16, w17, w18,
                                  w19] = well;
    [[maybe_unused]] const auto& [s1, s2] = response;
    [[maybe_unused]] const auto& [m1, m2, m3, m4] = mean;
    [[maybe_unused]] const auto& [t1, t2, t3] = results;
    [[maybe_unused]] const auto& [x1, x2] = task;
}

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
