#include "tools/vxfile/report/Table.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/TempFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/vxfile/report/Complaint.h"

using namespace vxfile;

namespace {

constexpr CColumn kColumns[] = {{"name", EColumnType::Text, "", "", 4},
                                {"number", EColumnType::Whole, "", ""},
                                {"dose", EColumnType::Count, "", ""},
                                {"value", EColumnType::Real, "", ""},
                                {"on", EColumnType::Flag, "", ""}};

using CRow = std::vector<CCell>;

CRow WithName(std::string_view name) { return {name, {}, {}, {}, {}}; }
CRow WithValue(double value) { return {{}, {}, {}, value, {}}; }

/// Returns the bytes of a table with these rows, or the message of the failure.
std::string Written(ETableForm form, const std::vector<CRow>& rows) {
    const CTempFolder folder;
    const std::string path = folder.Path("out");
    const std::string failure = FailureOf([&] {
        const auto writer = MakeTableWriter(form, {.path = path}, kColumns, [] { return 0; });
        for (const CRow& row : rows)
            writer->Put(row);
        writer->Commit();
    });
    return failure.empty() ? ReadAll(path) : failure;
}

/// The same without the line of names.
std::string Lines(ETableForm form, const std::vector<CRow>& rows) {
    const std::string text = Written(form, rows);
    return text.substr(text.find('\n') + 1);
}

}  // namespace

TEST(Table, KeepsATextInItsField) {
    EXPECT_EQ(Lines(ETableForm::Csv, {WithName("a,\"b\"\n")}), "\"a,\"\"b\"\"\n\",,,,\n");
    EXPECT_EQ(Lines(ETableForm::Tsv, {WithName("a,b")}), "a,b\t\t\t\t\n");
    EXPECT_EQ(Lines(ETableForm::Csv, {WithName("a\r")}), "\"a\r\",,,,\n");
    EXPECT_EQ(Lines(ETableForm::Csv, {WithName("=1+1")}), "'=1+1,,,,\n");
    EXPECT_EQ(Written(ETableForm::JsonLines, {WithName("a\"\n\x01")}).substr(0, 22), R"({"name":"a\"\n\u0001",)");
    EXPECT_EQ(Written(ETableForm::Npy, {WithName("1234"), WithName("12345")}),
              "An array has 4 bytes for a name, too few for \"12345\"; choose --csv, --tsv or --jsonl.");
}

TEST(Table, RefusesValuesOfAnotherType) {
    EXPECT_THROW(
        {
            const CTempFolder folder;
            const auto writer = MakeTableWriter(ETableForm::Npy, {.path = folder.Path("out")}, kColumns, {});
            writer->Put(WithValue(1));
            writer->Put(CRow{std::int64_t{1}, {}, {}, {}, {}});
        },
        std::bad_variant_access);
}
