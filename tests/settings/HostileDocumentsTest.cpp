#include <string>
#include <utility>

#include "tests/support/AllocationCount.h"
#include "tests/support/LinearTime.h"
#include "tests/xmlarchive/ArchiveTest.h"

namespace {

/// Reads a document as settings and as results, and queries the content.
void ReadAsBoth(const std::string& path, const std::string& document) {
    WriteAll(path, document);
    CVXFileIO io;
    try {
        io.GetSettingsReader()->ReadFile(path);
    } catch (const CExcVXReader& failure) {
        ADD_FAILURE() << failure.GetMsg();
    } catch (...) {  // a dose without text, in a file that looks like an older one
    }
    io.GetResultsReader()->ReadFile(path);
    io.GetSettingsReader()->GetRecordPlateProperty()->GetActiveCompoundWellIDs(0);
    for (const enTask task : io.GetResultsReader()->GetResults()->GetTasks())
        io.GetResultsReader()->GetResults()->GetWellIDs(task, 0);
}

TEST(HostileDocumentsTest, UnclosedSectionsAndDeepNestingNeedNoStack) {
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
    const CTempFolder folder;
    EXPECT_TRUE(TakesLinearTime(10'000, [&](std::size_t count) {
        std::string wells;
        for (std::size_t id = 0; id < count; ++id)
            wells += "<Well><WellID>" + std::to_string(id) + "</WellID><State>2</State></Well>";
        CVXFileIO io;
        WriteAll(folder.Path("a.vxs"), "<V><Header><FileName/></Header><Settings><PropertyRecordPlate><Wells Size=\"" +
                                           std::to_string(count) + "\">" + wells +
                                           "</Wells></PropertyRecordPlate></Settings></V>");
        io.GetSettingsReader()->ReadFile(folder.Path("a.vxs"));
        const CPropRecordPlate& plate = *io.GetSettingsReader()->GetRecordPlateProperty();
        EXPECT_EQ(plate.GetActiveCompoundWellIDs(0).size(), count);
        io.GetSettingsWriter()->SetRecordPlateProperty(plate);
        io.GetSettingsWriter()->WriteFile(folder.Path("b.vxs"));
        io.GetSettingsReader()->ReadFile(folder.Path("b.vxs"));
        EXPECT_EQ(plate.Data.Wells.size(), count);
    }));
}

TEST(HostileDocumentsTest, GeneratedMarksAreLimitedForLongLists) {
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

/// A list may claim as many entries as its blanks have room for. These must not be allocated at a hundred times that
/// size.
TEST(HostileDocumentsTest, AListThatClaimsTooManyEntriesTakesMemoryInProportion) {
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

TEST(HostileDocumentsTest, MissingEntriesAreAddedUpToAThousand) {
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
