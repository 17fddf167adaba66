#include <gtest/gtest.h>
#include <vxfileio/frame/VXFileIO.h>

#include <set>
#include <type_traits>

namespace {

static_assert(!std::is_copy_constructible_v<CVXFileIO> && !std::is_copy_assignable_v<CVXFileIO>);
static_assert(!std::is_copy_constructible_v<CIRawDataWriter> && !std::is_copy_assignable_v<CIRawDataReader>);
static_assert(!std::is_polymorphic_v<CVXFileIO> && !std::is_polymorphic_v<CIRawDataWriter>);
static_assert(!std::is_polymorphic_v<CExcVXReader> && !std::is_default_constructible_v<CExcVXReader>);

TEST(FacadesTest, EachAccessorAlwaysReturnsItsOwnFacade) {
    CVXFileIO io;
    const auto all = [&io] {
        return std::vector<const void*>{io.GetRawDateWriter(), io.GetRawDataReader(), io.GetResultsWriter(),
                                        io.GetResultsReader(), io.GetResultsExport(), io.GetSettingsWriter(),
                                        io.GetSettingsReader()};
    };
    const auto first = all();
    EXPECT_EQ(all(), first);
    EXPECT_EQ(std::set<const void*>(first.begin(), first.end()).size(), 7U);
    EXPECT_TRUE(std::is_sorted(first.begin(), first.end(), std::less<>())) << "the facades are members in this order";
}

TEST(FacadesTest, ExceptionsOfTheWriterArriveUnchanged) {
    CVXFileIO io;
    try {
        io.GetRawDateWriter()->Open("no such folder/run.vxd");
        FAIL() << "nothing was thrown";
    } catch (const CExcVXReader& failure) {
        EXPECT_EQ(failure.GetCode(), -1);
        EXPECT_EQ(failure.GetMsg(), "Cannot open file no such folder/run.vxd");
    }
}

}  // namespace
