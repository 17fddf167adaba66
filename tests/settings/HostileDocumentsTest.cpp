#include <random>
#include <string>
#include <utility>

#include "tests/reference/Twin.h"
#include "tests/support/AllocationCount.h"
#include "tests/xmlarchive/ArchiveTest.h"

namespace {

/// Reads a document as settings and as results, and asks for what is there.
void ReadAsBoth(const std::string& path, const std::string& document) {
    WriteAll(path, document);
    CVXFileIO io;
    try {
        io.GetSettingsReader()->ReadFile(path);
    } catch (const CExcVXReader& failure) {
        ADD_FAILURE() << failure.GetMsg();
    } catch (...) {  // a dose without text, in a file that became one of the older ones
    }
    io.GetResultsReader()->ReadFile(path);
    io.GetSettingsReader()->GetRecordPlateProperty()->GetActiveCompoundWellIDs(0);
    for (const enTask task : io.GetResultsReader()->GetResults()->GetTasks())
        io.GetResultsReader()->GetResults()->GetWellIDs(task, 0);
}

class HostileDocumentsTest : public testing::TestWithParam<const char*> {
 protected:
    CTempFolder m_folder;
    std::string m_path = m_folder.Path("hostile.xml");
    std::string m_document = ReadAll(ReferencePath(std::string("xml/") + GetParam()));
};

TEST_P(HostileDocumentsTest, CutAnywhere) {
    for (std::size_t size = 0; size < m_document.size(); size += 7)
        ReadAsBoth(m_path, m_document.substr(0, size));
}

TEST_P(HostileDocumentsTest, DamagedAnywhere) {
    std::mt19937 random(1);
    const std::string pieces[] = {"<",
                                  ">",
                                  "</",
                                  "/>",
                                  "\"",
                                  "&",
                                  "Size=\"2147483647\"",
                                  "Size=\"-5\"",
                                  "<!--",
                                  "<![CDATA[",
                                  std::string(1, '\0')};
    for (int round = 0; round < 500; ++round) {
        std::string document = m_document;
        for (int damage = 0; damage < 3; ++damage) {
            const std::size_t place = random() % document.size();
            document.replace(place, random() % 12, pieces[random() % std::size(pieces)]);
        }
        ReadAsBoth(m_path, document);
    }
}

TEST_P(HostileDocumentsTest, ListsThatClaimEverything) {
    for (std::size_t place = 0; (place = m_document.find("Size=\"", place)) != std::string::npos; ++place) {
        std::string document = m_document;
        document.insert(place + 6, "99999999");
        ReadAsBoth(m_path, document);
    }
}

INSTANTIATE_TEST_SUITE_P(Of, HostileDocumentsTest, testing::Values("settings.vxs", "results.vxr"),
                         [](const auto& file) { return std::string(file.param).substr(0, 7); });

TEST(HostileDocumentsTest, SectionsWithoutEndAndDeepNestingTakeNoStack) {
    const CTempFolder folder;
    for (const char* const opener :
         {"<Settings><PropertyRecordPlate><Wells Size=\"9\">", "<Task>", "<Recording>", "<QC>",
          "<Results><Task><Recordings Size=\"1\"><Recording><Wells Size=\"1\"><Well>",
          "<PropertyAnalyzer><AnalyzeSettings><Tasks Size=\"1\"><Task>"}) {
        std::string document = "<V><Header><FileName/></Header>";
        while (document.size() < 1'000'000)
            document += opener;
        ReadAsBoth(folder.Path("deep.xml"), document);
    }
}

TEST(HostileDocumentsTest, ManyWellsOfOnePlateTakeLinearTime) {
    std::string wells;
    for (int id = 0; id < 100'000; ++id)
        wells += "<Well><WellID>" + std::to_string(id) + "</WellID><State>2</State></Well>";
    const CTempFolder folder;
    CVXFileIO io;
    WriteAll(folder.Path("a.vxs"),
             "<V><Header><FileName/></Header><Settings><PropertyRecordPlate><Wells Size=\"100000\">" + wells +
                 "</Wells></PropertyRecordPlate></Settings></V>");
    io.GetSettingsReader()->ReadFile(folder.Path("a.vxs"));
    const CPropRecordPlate& plate = *io.GetSettingsReader()->GetRecordPlateProperty();
    EXPECT_EQ(plate.GetActiveCompoundWellIDs(0).size(), 100'000U);
    io.GetSettingsWriter()->SetRecordPlateProperty(plate);
    io.GetSettingsWriter()->WriteFile(folder.Path("b.vxs"));
    io.GetSettingsReader()->ReadFile(folder.Path("b.vxs"));
    EXPECT_EQ(plate.Data.Wells.back()->WellID, 99'999);
}

TEST(HostileDocumentsTest, MadeUpMarksAreNoProductOfTwoLists) {
    std::string wells;
    std::string doses;
    for (int i = 0; i < 5000; ++i) {
        wells += "<Well><WellID>" + std::to_string(i) + "</WellID></Well>";
        doses += "<Dose/>";
    }
    const CTempFolder folder;
    CVXFileIO io;
    WriteAll(folder.Path("a.vxs"),
             "<V><Header><FileName/></Header><Settings><PropertyRecordPlate><Wells Size=\"5000\">" + wells +
                 "</Wells><Series Size=\"5000\">" + doses + "</Series></PropertyRecordPlate></Settings></V>");
    io.GetSettingsReader()->ReadFile(folder.Path("a.vxs"));
    EXPECT_EQ(io.GetSettingsReader()->GetAnalyzerProperty()->AnalyzeSettings.at(enTask::Series).size(), 20U);
}

/// Blanks make room for entries; whatever a list claims, they mustn't become entries a hundred times their size.
TEST(HostileDocumentsTest, AListThatClaimsMoreThanThereIsTakesMemoryInProportion) {
    const CTempFolder folder;
    const std::string path = folder.Path("claims.xml");
    const std::size_t blanks = 1'000'000;
    const std::pair<std::string, std::string> documents[] = {
        {"<Results><Task><TaskName>Series</TaskName><Recordings Size=\"4000000000\">",
         "</Recordings></Task></Results>"},
        {"<Settings><PropertyRecordPlate><Wells Size=\"2147483647\">", "</Wells></PropertyRecordPlate></Settings>"},
        {"<Settings><PropertyQualityCheck><QualityChecks Size=\"2147483647\">", "</QualityChecks></Settings>"},
        {"<Settings><PropertyAnalyzer><AnalyzeSettings><Tasks Size=\"2147483647\">", "</Tasks></Settings>"},
    };
    for (const auto& [begin, end] : documents) {
        WriteAll(path, "<V><Header><FileName/></Header>" + begin + std::string(blanks, ' ') + end + "</V>");
        CVXFileIO io;
        const std::size_t before = AllocatedBytes();
        io.GetResultsReader()->ReadFile(path);
        io.GetSettingsReader()->ReadFile(path);
        EXPECT_LT(AllocatedBytes() - before, 4 * blanks) << begin;
    }
}

TEST(HostileDocumentsTest, EntriesThatTheDocumentEndsBeforeAreMadeUpToAThousand) {
    const CTempFolder folder;
    const auto recordings = [&](const std::string& size, const std::string& entries) {
        WriteAll(folder.Path("a.vxr"),
                 "<V><Header><FileName/></Header><Results><Task><TaskName>Series</TaskName><Recordings Size=\"" + size +
                     "\">" + entries + std::string(10'000, ' '));
        CVXFileIO io;
        io.GetResultsReader()->ReadFile(folder.Path("a.vxr"));
        return io.GetResultsReader()->GetResults()->GetRecordingCount(enTask::Series);
    };
    const std::string entry = "<Recording><Dose>1</Dose></Recording>";
    EXPECT_EQ(recordings("5", entry + entry), 5);
    EXPECT_EQ(recordings("4000", entry + entry), 1002);
    std::string all;
    for (int i = 0; i < 4000; ++i)
        all += entry;
    EXPECT_EQ(recordings("4000", all), 4000);
}

}  // namespace
