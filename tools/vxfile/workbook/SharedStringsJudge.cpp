#include "tools/vxfile/workbook/SharedStringsJudge.h"

#include <algorithm>
#include <list>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "tools/vxfile/workbook/Records.h"
#include "vxfileio/export/biff/ContinuedBody.h"
#include "vxfileio/export/biff/GlobalRecords.h"
#include "vxfileio/export/biff/RecordStream.h"

using namespace YExcel;

namespace vxfile {

namespace {

/// The bodies of a record and its CONTINUE records, read one after the other.
class CBodies {
 public:
    CBodies(std::span<const std::byte> stream, std::size_t position) : m_stream(stream) {
        if (const auto record = RecordAt(stream, position)) Enter(*record);
    }

    /// Returns the next byte; nothing behind the last body. Going on in a further record passes over its option byte if
    /// that cuts a text, and takes it over.
    std::optional<std::uint8_t> Next(std::uint8_t* option = nullptr) {
        while (m_body.empty()) {
            const auto record = RecordAt(m_stream, m_end);
            if (!record || record->code != kContinue) return std::nullopt;
            Enter(*record);
            if (option != nullptr && !m_body.empty()) *option = Take();
        }
        return Take();
    }

    /// Takes a number, least significant byte first.
    std::optional<std::uint32_t> Number(std::size_t size) {
        std::uint32_t number = 0;
        for (std::size_t i = 0; i < size; ++i) {
            const auto byte = Next();
            if (!byte) return std::nullopt;
            number |= std::uint32_t{*byte} << (8 * i);
        }
        return number;
    }

    /// Takes one character, as wide as the option says.
    std::optional<char16_t> Character(std::uint8_t& option) {
        const auto low = Next(&option);
        if (!low || option != kWide) return low;
        const auto high = Next();
        if (!high) return std::nullopt;
        return static_cast<char16_t>(*low | *high << 8U);
    }

    /// Returns where the last of the records ends.
    std::size_t End() const {
        std::size_t end = m_end;
        for (auto record = RecordAt(m_stream, end); record && record->code == kContinue;
             record = RecordAt(m_stream, end))
            end = record->End();
        return end;
    }

 private:
    void Enter(const CRecord& record) {
        m_body = record.body;
        m_end = record.End();
    }
    std::uint8_t Take() {
        const auto byte = std::to_integer<std::uint8_t>(m_body.front());
        m_body = m_body.subspan(1);
        return byte;
    }

    std::span<const std::byte> m_stream;
    std::span<const std::byte> m_body;
    std::size_t m_end = 0;
};

/// The texts of a table. Lists keep their items where they are, which the table looks at.
struct CTexts {
    std::list<std::string> narrow;
    std::list<std::u16string> wide;
    SharedStringTable table;
};

bool ReadText(CBodies& bodies, CTexts& texts) {
    const auto count = bodies.Number(2);
    const auto first = bodies.Number(1);
    if (!count || !first) return false;
    auto option = static_cast<std::uint8_t>(*first);
    const bool isWide = option == kWide;
    std::u16string text;
    for (std::uint32_t i = 0; i < *count; ++i) {
        const auto character = bodies.Character(option);
        if (!character) return false;
        text += *character;
    }
    if (isWide) {
        texts.table.strings.emplace_back(std::u16string_view(texts.wide.emplace_back(std::move(text))));
    } else {
        std::string narrow(text.size(), '\0');
        std::ranges::transform(text, narrow.begin(), [](char16_t c) { return static_cast<char>(c); });
        texts.table.strings.emplace_back(std::string_view(texts.narrow.emplace_back(std::move(narrow))));
    }
    return true;
}

/// Reads a whole table. Returns the number of texts that it claims to have.
std::uint32_t ReadTable(CBodies& bodies, CTexts& texts) {
    texts.table.total = bodies.Number(4).value_or(0);
    const std::uint32_t claimed = bodies.Number(4).value_or(0);
    while (texts.table.strings.size() < claimed && ReadText(bodies, texts)) {
    }
    return claimed;
}

std::string Where(std::size_t position) { return "SST > byte " + std::to_string(position) + " of the stream"; }

std::string Utf8(const SstString& text) {
    std::string utf8;
    const auto append = [&](unsigned c) {
        if (c < 0x80) {
            utf8 += static_cast<char>(c);
        } else if (c < 0x800) {
            utf8 += {static_cast<char>(0xC0U | c >> 6U), static_cast<char>(0x80U | (c & 0x3FU))};
        } else {
            utf8 += {static_cast<char>(0xE0U | c >> 12U), static_cast<char>(0x80U | (c >> 6U & 0x3FU)),
                     static_cast<char>(0x80U | (c & 0x3FU))};
        }
    };
    std::visit(
        [&](auto characters) {
            for (const auto c : characters)
                append(static_cast<unsigned>(c) & (sizeof(c) == 1 ? 0xFFU : 0xFFFFU));
        },
        text.Text());
    return utf8;
}

}  // namespace

std::vector<std::string> SharedTextsOf(std::span<const std::byte> stream) {
    auto record = RecordAt(stream, 0);
    while (record && record->code != SharedStringTable::kCode)
        record = RecordAt(stream, record->End());
    std::vector<std::string> list;
    if (!record) return list;
    CBodies bodies(stream, record->position);
    CTexts texts;
    ReadTable(bodies, texts);
    for (const auto& text : texts.table.strings)
        list.push_back(Utf8(text));
    return list;
}

std::size_t JudgeSharedStrings(std::span<const std::byte> stream, std::size_t position, std::uint32_t& count,
                               std::uint32_t& uses, CFindings& findings) {
    CBodies bodies(stream, position);
    CTexts texts;
    uses = texts.table.total = bodies.Number(4).value_or(0);
    const std::uint32_t claimed = bodies.Number(4).value_or(0);
    while (texts.table.strings.size() < claimed && ReadText(bodies, texts)) {
    }
    count = static_cast<std::uint32_t>(texts.table.strings.size());
    const std::size_t end = bodies.End();
    if (count < claimed) {
        findings.Add({Where(position), -1, std::to_string(count) + " whole texts", std::to_string(claimed),
                      "Cells that show the others are damaged."});
        return end;
    }
    const auto expected = RecordBytes(texts.table);
    const auto found = stream.subspan(position, end - position);
    const auto differs = std::ranges::mismatch(found, expected).in1 - found.begin();
    if (!std::ranges::equal(found, expected))
        findings.Add({Where(position + static_cast<std::size_t>(differs)), -1,
                      "texts that are laid out in another way from here on", "texts cut as the library cuts them",
                      "Another program wrote the table, or a text's length or option is damaged."});
    return end;
}

}  // namespace vxfile
