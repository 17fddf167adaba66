#include <map>
#include <set>
#include <string>

#include "tests/xmlarchive/ArchiveTest.h"

namespace {

/// Returns a plate of two compounds with a null entry in each list.
CPropRecordPlate Plate() {
    CPropRecordPlate plate;
    plate.Data.PlateID = 'A';
    plate.Data.Layout = enPlateLayout::L8x12;
    plate.Data.PipetMode = enPipetMode::Fast;
    plate.Data.PlateRows = 8;
    plate.Data.PlateColumns = 12;
    plate.Data.Series = {1000, 1000000};
    plate.Data.AddWell(64, 0, 0, 64, "A1");
    plate.Data.AddWell(65, 1, 0, 65, "B1");
    plate.Data.Wells.push_back(nullptr);
    plate.Data.AddWell(64, 5, 5, 5, "again");
    plate.SetWellState(65, PlateWell::kInactive);
    plate.Data.Compounds.push_back(nullptr);
    plate.Data.Compounds.push_back(std::make_unique<PlateCompound>(PlateCompound{"C1", {64}, 1, 'S', 4}));
    plate.Data.Compounds.push_back(std::make_unique<PlateCompound>(PlateCompound{"C2", {65, 99, 64}, 2}));
    return plate;
}

std::string WellXml(const std::string& id, const std::string& channel, const std::string& label,
                    const std::string& column, const std::string& row, const std::string& state) {
    return "<Well><WellID>" + id + "</WellID><ChID>" + channel + "</ChID><Label>" + label + "</Label><PlateColumn>" +
           column + "</PlateColumn><PlateRow>" + row + "</PlateRow><State>" + state + "</State></Well>";
}

const std::string kWell64 = WellXml("64", "64", "A1", "0", "0", "2");
const std::string kWell65 = WellXml("65", "65", "B1", "0", "1", "1");
const std::string kHead =
    "<PropertyRecordPlate><Layout>8x12</Layout><PlateID>A</PlateID><PlateRows>8</PlateRows><PlateColumns>12"
    "</PlateColumns>";
const std::string kSeries = "<Series Size=\"2\"><Dose>1000</Dose><Dose>1000000</Dose></Series>";
const std::string kShort1 = kHead + "<CompoundID>1</CompoundID><Label>C1</Label><Wells Size=\"1\">" + kWell64 +
                            "</Wells><PipetMode>Fast</PipetMode>" + kSeries + "</PropertyRecordPlate>";
const std::string kShort2 = kHead + "<CompoundID>2</CompoundID><Label>C2</Label><Wells Size=\"3\">" + kWell65 +
                            WellXml("99", "0", "", "0", "0", "0") + kWell64 + "</Wells><PipetMode>Fast</PipetMode>" +
                            kSeries + "</PropertyRecordPlate>";

class RecordPlateTest : public CArchiveTest {
 protected:
    std::string Short(const CPropRecordPlate& plate, std::int32_t index) {
        return Written([&](CXmlFileArchive& archive) { plate.SaveShort(archive, index); });
    }
    void Load(CPropRecordPlate& plate, const std::string& element) {
        Read("<R>" + element + "</R>", [&](CXmlFileArchive& archive) { plate.Load(archive); });
    }
    void LoadShort(CPropRecordPlate& plate, const std::string& element) {
        Read("<R>" + element + "</R>", [&](CXmlFileArchive& archive) { plate.LoadShort(archive); });
    }
};

TEST_F(RecordPlateTest, TheShortFormHoldsOneCompoundAndItsWells) {
    const CPropRecordPlate plate = Plate();
    EXPECT_EQ(Short(plate, -1), kShort1) << "the first existing one";
    EXPECT_EQ(Short(plate, 1), kShort1);
    EXPECT_EQ(Short(plate, 2), kShort2);
    for (const std::int32_t absent : {0, 3, -2, 2147483647}) {
        EXPECT_THROW(Short(plate, absent), CExcVXReader) << absent;
        EXPECT_EQ(ReadAll(m_path), "") << "nothing is written";
    }
    EXPECT_NE(Short(CPropRecordPlate(), -1).find("<CompoundID>0</CompoundID><Label></Label><Wells Size=\"0\"/>"),
              std::string::npos);

    CPropRecordPlate back = Plate();
    back.Data.StdVolume = 5;
    LoadShort(back, kShort2);
    EXPECT_EQ(back.GetAllWellIDs(), (std::vector<std::int32_t>{65, 99, 64}));
    EXPECT_EQ(back.GetCompoundIDs(), (std::vector<std::int32_t>{2}));
    EXPECT_EQ(back.GetCompoundWellIDs(2), (std::vector<std::int32_t>{65, 99, 64}));
    EXPECT_EQ(back.GetWellState(65), PlateWell::kInactive) << "the state is kept";
    EXPECT_EQ(back.FindCompound(2)->StockPlateID, ' ');
    EXPECT_EQ(back.Data.StdVolume, 5U) << "this form doesn't have it";
    EXPECT_EQ(back.Map.Labels[7][11], "H12");

    LoadShort(back, "<PropertyRecordPlate/>");
    EXPECT_TRUE(back.Data.Wells.empty());
    ASSERT_EQ(back.Data.Compounds.size(), 1U);
    EXPECT_EQ(back.Data.Compounds[0]->CompoundID, 0);

    LoadShort(back,
              "<PropertyRecordPlate><Wells Size=\"1\"><Well><WellID>1</WellID></Well></Wells><Wells Size=\"1\"><Well>"
              "<WellID>2</WellID></Well></Wells></PropertyRecordPlate>");
    EXPECT_EQ(back.GetAllWellIDs(), (std::vector<std::int32_t>{1, 2}));
    EXPECT_EQ(back.GetCompoundWellIDs(0), (std::vector<std::int32_t>{2})) << "the second list wins";

    // The state is set for the first well with the ID, as `SetWellState` does.
    LoadShort(back,
              "<PropertyRecordPlate><Wells Size=\"2\"><Well><WellID>1</WellID><State>0</State></Well><Well><WellID>1"
              "</WellID><State>7</State></Well></Wells></PropertyRecordPlate>");
    EXPECT_EQ(back.Data.Wells[0]->State, 7);
    EXPECT_EQ(back.Data.Wells[1]->State, PlateWell::kNew);
}

TEST_F(RecordPlateTest, TheLongFormHoldsAllCompounds) {
    CPropRecordPlate plate = Plate();
    plate.Data.StdVolume = 1;
    plate.Data.MaxVolume = 2;
    plate.Data.MixVolume = 4294967295U;
    plate.Data.MinWellsPerCompound = 3;
    const std::string saved = Written([&](CXmlFileArchive& archive) { plate.Save(archive); });
    EXPECT_EQ(
        saved,
        kHead +
            "<Compounds Size=\"2\"><Compound><CompoundID>1</CompoundID><Label>C1</Label><StockPlateID>S"
            "</StockPlateID><StockPlateRow>4</StockPlateRow><Wells Size=\"1\"><WellID>64</WellID></Wells>"
            "</Compound><Compound><CompoundID>2</CompoundID><Label>C2</Label><StockPlateID> </StockPlateID>"
            "<StockPlateRow>0</StockPlateRow><Wells Size=\"3\"><WellID>65</WellID><WellID>99</WellID><WellID>64"
            "</WellID></Wells></Compound></Compounds><Wells Size=\"3\">" +
            kWell64 + kWell65 + WellXml("64", "5", "again", "5", "5", "2") + "</Wells>" + kSeries +
            "<MaxVolume>2</MaxVolume><MinWellsPerCompound>3</MinWellsPerCompound><MixVolume>4294967295</MixVolume>"
            "<PipetMode>Fast</PipetMode><StdVolume>1</StdVolume></PropertyRecordPlate>");
    CPropRecordPlate back;
    Load(back, saved);
    EXPECT_EQ(back.GetCompoundIDs(), (std::vector<std::int32_t>{1, 2}));
    EXPECT_EQ(back.GetCompoundWellIDs(2), (std::vector<std::int32_t>{65, 99, 64}));
    EXPECT_EQ(back.GetWellState(65), PlateWell::kActive) << "this form doesn't keep inactive states";
    EXPECT_EQ(back.GetWellState(64), PlateWell::kNew);
    EXPECT_EQ(back.Data.MixVolume, 4294967295U);

    // Unusual lists: entries are found among other elements, and an empty list has no end tag.
    Load(back,
         "<PropertyRecordPlate><PlateID></PlateID><Compounds Size=\"3\"><Compound><Wells Size=\"0\"/><CompoundID>5"
         "</CompoundID></Compound><Compound><Wells Size=\"2\"><X/><WellID>1</WellID><Y><WellID>2</WellID></Y></Wells>"
         "<CompoundID>6</CompoundID></Compound><Compound><CompoundID>7</CompoundID></Compound></Compounds>"
         "<Series Size=\"2\"><X>1</X><Dose>2</Dose></Series><PipetMode>?</PipetMode><Layout>Ostrel6x9</Layout>"
         "</PropertyRecordPlate>");
    EXPECT_EQ(back.Data.PlateID, '\0');
    EXPECT_EQ(back.GetCompoundIDs(), (std::vector<std::int32_t>{5, 6, 7}));
    EXPECT_EQ(back.GetCompoundWellIDs(6), (std::vector<std::int32_t>{1, 2}));
    EXPECT_EQ(back.Data.Series, (std::vector<std::uint64_t>{2}));
    EXPECT_EQ(back.Data.PipetMode, enPipetMode::NotDefined);
    EXPECT_EQ(back.Map.RowLabels, std::vector<std::string>(6));
    EXPECT_EQ(back.Map.Labels[0][3], "A1");
    EXPECT_EQ(back.Data.Wells.size(), 3U) << "this document doesn't have them";
}

TEST_F(RecordPlateTest, QueriesSkipMissingObjects) {
    CPropRecordPlate plate = Plate();
    EXPECT_EQ(plate.GetAllWellIDs(), (std::vector<std::int32_t>{64, 65, 64}));
    EXPECT_EQ(plate.GetActiveWellIDs(), (std::vector<std::int32_t>{64, 64}));
    EXPECT_EQ(plate.GetActiveCompoundWellIDs(2), (std::vector<std::int32_t>{99, 64}))
        << "a well without a record is active";
    EXPECT_TRUE(plate.GetCompoundWellIDs(3).empty());
    EXPECT_EQ(plate.FindCompound(3), nullptr);
    EXPECT_EQ(plate.FindWell(66), nullptr);
    EXPECT_EQ(plate.GetWellLabel(66) + plate.GetWellLabel(64), "A1") << "the first one wins";
    plate.SetWellState(66, 1);
    plate.SetWellState(65, 3);
    EXPECT_EQ(plate.GetWellState(66), PlateWell::kActive);
    EXPECT_EQ(plate.GetActiveWellIDs().size(), 2U) << "state 3 isn't active";

    CPropRecordPlate copy = plate;
    copy.FindWell(64)->Label = "changed";
    copy.FindCompound(1)->Wells.clear();
    EXPECT_EQ(plate.GetWellLabel(64), "A1");
    EXPECT_EQ(plate.GetCompoundWellIDs(1).size(), 1U);
    const CPropRecordPlate& itself = copy;
    copy = itself;
    EXPECT_EQ(copy.GetWellLabel(64), "changed");
    copy.Data.ResetCompounds(2);
    copy.Data.ClearWells();
    EXPECT_EQ(copy.Data.Compounds.size(), 2U);
    EXPECT_TRUE(copy.GetAllWellIDs().empty() && copy.GetCompoundIDs().empty());
}

TEST_F(RecordPlateTest, EveryLayoutHasAMap) {
    CPropRecordPlate plate;
    plate.BuildPlateMap(enPlateLayout::L16x6);
    const PlateMap first = plate.Map;
    plate.BuildPlateMap(enPlateLayout::L8x12);
    EXPECT_EQ(plate.Map.Labels, first.Labels);
    EXPECT_EQ(plate.Map.ChIDs, first.ChIDs);
    const struct {
        std::size_t row, column;
        const char* label;
        std::int32_t channel;
    } wells[] = {{0, 0, "A1", 64}, {1, 0, "B1", 65}, {3, 0, "D1", 67}, {0, 1, "A2", 68},  {3, 11, "D12", 111},
                 {7, 0, "H1", 0},  {4, 0, "E1", 3},  {7, 1, "H2", 4},  {4, 11, "E12", 47}};
    for (const auto& well : wells) {
        EXPECT_EQ(plate.Map.Labels[well.row][well.column], well.label);
        EXPECT_EQ(plate.Map.ChIDs[well.row][well.column], well.channel) << well.label;
    }
    EXPECT_EQ(plate.Map.RowLabels, (std::vector<std::string>{"A", "B", "C", "D", "E", "F", "G", "H"}));
    EXPECT_EQ(plate.Map.ColumnLabels.size(), 12U) << "not appended to the old labels";
    EXPECT_EQ(plate.Map.ColumnLabels.back(), "12");

    plate.BuildPlateMap(enPlateLayout::Ostrel6x9);
    const PlateMap small = plate.Map;
    EXPECT_EQ(small.ColumnLabels, std::vector<std::string>(9));
    std::map<std::string, std::int32_t> byLabel;
    for (std::size_t row = 0; row < 6; ++row) {
        for (std::size_t column = 0; column < 9; ++column)
            byLabel[small.Labels[row][column]] = small.ChIDs[row][column];
    }
    std::vector<std::int32_t> fromA1ToF9;
    for (const auto& [label, channel] : byLabel)
        fromA1ToF9.push_back(channel);
    EXPECT_EQ(fromA1ToF9,
              (std::vector<std::int32_t>{27, 29, 31, 26, 30, 32, 25, 28, 33, 37, 39, 41, 36, 40, 42, 35, 38, 43,
                                         47, 49, 51, 46, 50, 52, 45, 48, 53, 57, 59, 1,  56, 0,  2,  55, 58, 3,
                                         7,  9,  11, 6,  10, 12, 5,  8,  13, 17, 19, 21, 16, 20, 22, 15, 18, 23}));

    for (const std::int32_t unknown : {0, 4, -1}) {
        plate.BuildPlateMap(static_cast<enPlateLayout>(unknown));
        EXPECT_EQ(plate.Map.Labels, small.Labels);
    }
}

TEST_F(RecordPlateTest, DosesAreShownInTheLargestFittingUnit) {
    const struct {
        std::uint64_t dose;
        const char* text;
    } cases[] = {{0, "0pM"},
                 {999, "999pM"},
                 {1000, "1nM"},
                 {1500, "1500pM"},
                 {9999, "9999pM"},
                 {10000, "10nM"},
                 {12345, "12nM"},
                 {15500, "15nM"},
                 {1000000, "1\xB5M"},
                 {2500000, "2500nM"},
                 {2999999, "2999nM"},
                 {1000000000, "1mM"},
                 {9000000000, "9mM"},
                 {15999999999, "15mM"},
                 {999000000000, "999mM"},
                 {999999999999, "999mM"},
                 {1500000000000, "1500mM"}};
    CPropRecordPlate plate;
    for (const auto& c : cases) {
        EXPECT_EQ(DoseToText(c.dose), c.text) << c.dose;
        plate.Data.Series.push_back(c.dose);
    }
    EXPECT_EQ(plate.GetSeriesLabels().back(), "1500mM");
    for (const std::uint64_t dose : {1'000'000'000'000U, 2'000'000'000'000U, 10'000'000'000'000U, ~std::uint64_t{0}})
        EXPECT_ANY_THROW(DoseToText(dose)) << dose;
}

}  // namespace
