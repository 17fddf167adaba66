#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tools/vxfile/plate/PlateLabels.h"
#include "tools/vxfile/plate/PlateView.h"
#include "tools/vxfile/report/Complaint.h"

using namespace vxfile;

namespace {

using CIDs = std::vector<std::int32_t>;

/// A plate of 2x3 whose labels are coordinates in the first row and texts in the second.
CPlateLabels Labels() {
    CPropRecordPlate plate;
    plate.Data.AddWell(11, 0, 0, 0, "A1");
    plate.Data.AddWell(12, 0, 1, 0, "A2");
    plate.Data.AddWell(13, 0, 2, 0, "A3");
    plate.Data.AddWell(21, 1, 0, 0, "ctrl-1");
    plate.Data.AddWell(22, 1, 1, 0, "A3");
    plate.Data.AddWell(23, 1, 2, 0, "");
    return {plate, "run.vxs"};
}

}  // namespace

TEST(PlateLabels, MeanTheWellsOfALabelOfACoordinateAndOfARectangle) {
    for (const auto& [word, wells] : std::vector<std::pair<std::string, CIDs>>{{"A1", {11}},
                                                                               {"a1", {11}},
                                                                               {"A01", {11}},
                                                                               {"A2-A1", {11, 12}},
                                                                               {"A3", {13, 22}},
                                                                               {"a03", {13, 22}},
                                                                               {"ctrl-1", {21}},
                                                                               {"B1", {21}},
                                                                               {"B3", {23}},
                                                                               {"A1-B3", {11, 12, 13, 22, 21, 23}},
                                                                               {"B3-A2", {12, 13, 22, 23}},
                                                                               {"A1-A3", {11, 12, 13, 22}},
                                                                               {"11", {11}},
                                                                               {"0099", {99}},
                                                                               {"-3", {-3}}})
        EXPECT_EQ(Labels().WellsOf(word), wells) << word;
}

TEST(PlateLabels, ListWhatExistsIfAWellDoesNot) {
    for (const std::string word : {"A4", "C1", "A1-A4", "A1-", "CTRL-1", "A0", "B2", "", "2147483648"}) {
        const std::string failure = FailureOf([&] { static_cast<void>(Labels().WellsOf(word)); });
        EXPECT_EQ(failure, "run.vxs has no well \"" + word + "\"; its wells: A1, A2, A3, ctrl-1, A3, 23.");
    }
    const std::string unknown = FailureOf([] { static_cast<void>(CPlateLabels().WellsOf("A1")); });
    EXPECT_TRUE(unknown.starts_with("'A1' isn't the ID of a well")) << unknown;
}

TEST(PlateLabels, FollowTheWellsThatATextNames) {
    for (const auto& [text, labeled] : std::vector<std::pair<std::string, std::string>>{
             {"segment 1 (well 11)", "segment 1 (well 11 (A1))"},
             {"well 11, 12 samples", "well 11 (A1), 12 samples"},
             {"wells 11, 12, each", "wells 11 (A1), 12 (A2), each"},
             {"its wells: 11 - 13, 40.", "its wells: 11 (A1) - 13 (A3), 40."},
             {"well 23 and a well without ID", "well 23 and a well without ID"}}) {
        EXPECT_EQ(Labels().AddedTo(text), labeled);
        EXPECT_EQ(CPlateLabels().AddedTo(text), text);
    }
}

TEST(PlateView, ShowsTicksAndIfAskedSeconds) {
    EXPECT_EQ(CPlateView().TimesText(2500, 30000), "2500 to 30000 ticks");
    const CPlateView view{.ticksPerSecond = 10'000};
    EXPECT_EQ(view.TimesText(2500, 33333333), "2500 to 33333333 ticks (0.25 to 3333.3333 s)");
    EXPECT_EQ(view.TimeText(-2500), "-2500 ticks (-0.25 s)");
}

TEST(PlateLabels, ListTheFirstOfManyWells) {
    CPropRecordPlate plate;
    for (std::int32_t well = 0; well < 384; ++well)
        plate.Data.AddWell(2 * well, well / 24, well % 24, 0, "");
    const std::string failure = FailureOf([&] { static_cast<void>(CPlateLabels(plate, "run.vxs").WellsOf("Z9")); });
    EXPECT_EQ(failure,
              "run.vxs has no well \"Z9\"; its wells: 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30, 32, "
              "34, 36, 38 and 364 more.");
}
