#include "tools/vxfile/raw/CellJudge.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>
#include <variant>

#include "tools/vxfile/report/Text.h"
#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/CellCodec.h"
#include "vxfileio/rawdata/CellFault.h"
#include "vxfileio/rawdata/HeaderCodec.h"

using namespace vxfileio::helpers;
using namespace vxfileio::rawdata;

namespace vxfile {

namespace {

/// A fault in words.
struct CWords {
    std::string expected;
    std::string meaning;
};

CWords WordsFor(const CCellFault& fault, const auto& cell) {
    const std::string key(cell.key);
    switch (fault.kind) {
        case ECellFault::NoLineEnd:
            return {"CR LF as the last two bytes", "The cell has lost its end; readers ignore it."};
        case ECellFault::NoPadding:
            return {"at least one NUL byte before the line end", "Readers see one item too many."};
        case ECellFault::Padding:
            return {"nothing but NUL bytes up to the line end", "Readers ignore what follows a NUL."};
        case ECellFault::NoMark:
            return {"a text that begins " + Quoted(kFileTypeText), "No reader accepts the file."};
        case ECellFault::NoKey:
            return {"the key " + Quoted(key), "Readers find cells by their offset and take the value anyway."};
        case ECellFault::NotFixed:
            return {Quoted(cell.traits.standBy->empty() ? key : key + '=' + std::string(*cell.traits.standBy)),
                    "No writer puts anything else there; readers ignore it."};
        case ECellFault::LoneSign:
            return {"the key alone if there is no value", "Some readers see an item where there is none."};
        case ECellFault::NoNumber:
            return {"a number after " + Quoted(key + '='), "Readers take it for 0."};
        case ECellFault::OtherNumber:
            return {"the number as it is written, " + Quoted(fault.taken), "Readers take it for " + fault.taken + "."};
        case ECellFault::Separator:
            return {"a text without '=', ':' and line ends", "Readers take only " + Quoted(fault.taken) + "."};
    }
    return {};
}

/// Tells whether a fault lies behind the text of a cell, so that all of it has to be shown.
bool IsBehindText(ECellFault kind) {
    return kind == ECellFault::NoLineEnd || kind == ECellFault::NoPadding || kind == ECellFault::Padding;
}

void JudgeCells(const auto& cells, std::string_view bytes, const CHeaderPlace& place, CFindings& findings) {
    for (const auto& cell : cells) {
        const std::int64_t offset = place.offset + static_cast<std::int64_t>(cell.offset);
        const std::string where = cell.key.empty() ? place.name : place.name + " > " + std::string(cell.key);
        if (bytes.size() < cell.End()) {
            findings.Add({where, offset, "the end of the file", "the rest of the header",
                          "The file was cut; readers take 0 for what is missing."});
            return;
        }
        const std::string_view cellBytes = CellIn(cell, bytes);
        if (const auto fault = FaultOf(cell, cellBytes)) {
            auto [expected, meaning] = WordsFor(*fault, cell);
            findings.Add({where, offset, Quoted(IsBehindText(fault->kind) ? cellBytes : CellText(cellBytes)),
                          std::move(expected), std::move(meaning)});
        }
    }
}

// ---- Lists against their counts -------------------------------------------------------------------------------------

std::size_t CountItems(std::string_view cell) {
    std::size_t count = 0;
    for (CCellItems items(cell); items.Next();)
        ++count;
    return count;
}

/// A cell that tells how many channels there are: the count by its number, a list by its items.
struct CTellingCell {
    std::string_view key;
    std::int64_t offset;  ///< In the header.
    std::int64_t channels;
};

/// The count and then the lists that go with it.
using CTellingCells = std::vector<CTellingCell>;

CTellingCells CellsThatTell(CChannels channels, const CLayout& layout, std::string_view bytes) {
    CTellingCells cells;
    for (const auto& cell : layout.recording.cells) {
        const std::string_view cellBytes = CellIn(cell, bytes);
        const auto add = [&](std::int64_t told) {
            cells.push_back({cell.key, static_cast<std::int64_t>(cell.offset), told});
        };
        const auto* const count = std::get_if<CChannelCount>(&cell.member);
        const auto* const list = std::get_if<CChannelList>(&cell.member);
        if (count != nullptr && count->channels == channels) add(ParseInt64(CellValue(cellBytes)));
        if (list != nullptr && list->channels == channels) add(static_cast<std::int64_t>(CountItems(cellBytes)));
    }
    return cells;
}

/// Returns the number that most of the cells tell; that of the count, unless more agree on another one.
std::int64_t MostTold(const CTellingCells& cells) {
    const auto votes = [&](std::int64_t number) { return std::ranges::count(cells, number, &CTellingCell::channels); };
    std::int64_t most = cells.front().channels;
    for (const auto& cell : cells) {
        if (votes(cell.channels) > votes(most)) most = cell.channels;
    }
    return most;
}

/// Readers go by the count.
const char* MeaningOfList(const CTellingCell& list, const CTellingCell& count) {
    if (list.channels == count.channels) return "Readers take as many as the count says.";
    return list.channels < count.channels ? "The remaining channels keep their defaults."
                                          : "Readers ignore the remaining items.";
}

/// One damaged cell is one finding, be it the count or a list.
void JudgeNumbers(const CTellingCells& cells, const CHeaderPlace& place, CFindings& findings) {
    const std::int64_t channels = MostTold(cells);
    const auto add = [&](const CTellingCell& cell, std::string found, const char* expected, const char* meaning) {
        findings.Add({place.name + " > " + std::string(cell.key), place.offset + cell.offset, std::move(found),
                      std::to_string(channels) + expected, meaning});
    };
    const CTellingCell& count = cells.front();
    if (count.channels != channels)
        add(count, std::to_string(count.channels), ", the number of items in the lists after it",
            count.channels < channels ? "Readers don't see the last channels."
                                      : "Readers see channels that aren't there.");
    for (const auto& list : std::span(cells).subspan(1)) {
        if (list.channels != channels)
            add(list, Counted(static_cast<std::uint64_t>(list.channels), "item"), ", one for each channel",
                MeaningOfList(list, count));
    }
}

/// The wells that the lists tell, whatever the count says.
CListedWells ListedWells(const CTellingCells& cells, const CLayout& layout, std::string bytes) {
    constexpr std::size_t kIDs = 1;
    constexpr std::size_t kTicks = 2;
    const std::int64_t count = std::min(MostTold(cells), cells[kIDs].channels);
    const CRecordingCell& cell = layout.recording["NumberOfWells"];
    EncodeCell(cell.key, count, std::span(bytes).subspan(cell.offset, cell.width));
    CRawDataRecordingHdr header;
    if (!DecodeChannels(layout, bytes, header)) return {};
    return {std::move(header.WellChannels), static_cast<std::size_t>(cells[kTicks].channels)};
}

}  // namespace

void JudgeFileCells(const CLayout& layout, std::string_view bytes, const CHeaderPlace& place, CFindings& findings) {
    JudgeCells(layout.file.cells, bytes, place, findings);
}

CListedWells JudgeRecordingCells(const CLayout& layout, std::string_view bytes, const CHeaderPlace& place,
                                 CFindings& findings) {
    JudgeCells(layout.recording.cells, bytes, place, findings);
    if (bytes.size() < layout.recording.size) return {};
    const auto wells = CellsThatTell(&CRawDataRecordingHdr::WellChannels, layout, bytes);
    JudgeNumbers(wells, place, findings);
    JudgeNumbers(CellsThatTell(&CRawDataRecordingHdr::AuxChannels, layout, bytes), place, findings);
    return ListedWells(wells, layout, std::string(bytes));
}

void JudgeSegmentCells(const CLayout& layout, std::string_view bytes, const CHeaderPlace& place, CFindings& findings) {
    JudgeCells(layout.segment.cells, bytes, place, findings);
}

bool IsExactSegmentHdr(const CLayout& layout, std::string_view bytes) {
    if (bytes.size() != layout.segment.size) return false;
    CSegmentHdr header;
    Decode(layout, bytes, header);
    std::array<char, kMostSegmentHdr> room{};
    const auto exact = std::span(room).first(layout.segment.size);
    Encode(layout, header, exact);  // no number is too long for its cell
    return std::equal(bytes.begin(), bytes.end(), exact.begin());
}

}  // namespace vxfile
