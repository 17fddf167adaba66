#include "verify/workbook/SharedStringsJudge.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "verify/workbook/Records.h"
#include "vxfileio/export/biff/ContinuedBody.h"
#include "vxfileio/export/biff/GlobalRecords.h"
#include "vxfileio/export/biff/RecordStream.h"

using namespace YExcel;

namespace vxfile {

namespace {

/// Loads the fields of a record and of its CONTINUE records, as `CContinuedBody` stores them.
class CContinuedLoad : public vxfileio::helpers::CFieldReader<CContinuedLoad> {
 public:
    CContinuedLoad(std::span<const std::byte> stream, std::size_t position) : m_stream(stream), m_end(position) {
        if (const auto record = RecordAt(stream, position)) Enter(*record);
    }

    bool Take(std::span<std::byte> bytes) {
        for (std::byte& byte : bytes) {
            while (m_body.empty()) {
                if (!Continue()) return false;
            }
            byte = m_body.front();
            m_body = m_body.subspan(1);
        }
        return true;
    }
    /// Returns the number of bytes left in the current record and after it.
    std::size_t Left() const { return m_body.size() + m_stream.size() - m_end; }

    void Text(SstString& string) {
        std::uint16_t count = 0;
        std::uint8_t option = kNarrow;
        (*this)(count, option);
        const bool isWide = option == kWide;
        std::u16string text;
        for (; count > 0 && IsWhole(); --count)
            text += Character(option);
        if (!IsWhole()) return;
        if (isWide) {
            string = SstString(std::u16string_view(Keep<std::u16string>() = std::move(text)));
        } else {
            auto& narrow = Keep<std::string>();
            std::ranges::transform(text, std::back_inserter(narrow), [](char16_t c) { return static_cast<char>(c); });
            string = SstString(std::string_view(narrow));
        }
    }

    /// Returns the end of the last CONTINUE record.
    std::size_t End() {
        while (Continue()) {
        }
        return m_end;
    }

 private:
    void Enter(const CRecord& record) {
        m_body = record.body;
        m_end = record.End();
    }
    bool Continue() {
        const auto record = RecordAt(m_stream, m_end);
        const bool isMore = record && record->code == kContinue;
        if (isMore) Enter(*record);
        return isMore;
    }
    /// If a text continues in the next record, its characters there follow a new option byte.
    char16_t Character(std::uint8_t& option) {
        if (m_body.empty()) (*this)(option);
        std::uint8_t low = 0;
        std::uint8_t high = 0;
        (*this)(low);
        if (option == kWide) (*this)(high);
        return static_cast<char16_t>(low | high << 8U);
    }

    std::span<const std::byte> m_stream;
    std::span<const std::byte> m_body;
    std::size_t m_end;  ///< Of the current record.
};

std::string Where(std::size_t position) { return "SST > byte " + std::to_string(position) + " of the stream"; }

}  // namespace

std::vector<std::string> SharedTextsOf(std::span<const std::byte> stream) {
    auto record = RecordAt(stream, 0);
    while (record && record->code != SharedStringTable::kCode)
        record = RecordAt(stream, record->End());
    std::vector<std::string> list;
    if (!record) return list;
    CContinuedLoad load(stream, record->position);
    SharedStringTable table;
    load(table);
    for (const auto& text : table.strings)
        list.push_back(Utf8(text));
    return list;
}

std::size_t JudgeSharedStrings(std::span<const std::byte> stream, std::size_t position, std::uint32_t& count,
                               std::uint32_t& uses, CFindings& findings) {
    CContinuedLoad load(stream, position);
    SharedStringTable table;
    load(table);
    uses = table.total;
    count = static_cast<std::uint32_t>(table.strings.size());
    const std::size_t end = load.End();
    if (load.Missing() != 0) {
        findings.Add({Where(position), -1, std::to_string(count) + " complete texts",
                      std::to_string(count + load.Missing()), "Cells with the other texts are damaged."});
        return end;
    }
    const auto expected = RecordBytes(table);
    const auto found = stream.subspan(position, end - position);
    const auto differs = std::ranges::mismatch(found, expected).in1 - found.begin();
    if (!std::ranges::equal(found, expected))
        findings.Add({Where(position + static_cast<std::size_t>(differs)), -1,
                      "texts with a different layout from here on", "texts split as this library splits them",
                      "Another program wrote the table, or the length or option of a text is damaged."});
    return end;
}

}  // namespace vxfile
