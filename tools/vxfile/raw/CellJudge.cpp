#include "tools/vxfile/raw/CellJudge.h"

#include <algorithm>
#include <array>
#include <utility>
#include <variant>

#include "tools/vxfile/io/Text.h"
#include "tools/vxfile/raw/CellFault.h"
#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/CellCodec.h"
#include "vxfileio/rawdata/HeaderCodec.h"

using namespace vxfileio;
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
            return {"CR LF as the last two bytes", "The cell has lost its end; readers don't look at it."};
        case ECellFault::NoPadding:
            return {"at least one NUL byte ahead of the line end", "Readers see one item too many."};
        case ECellFault::Padding:
            return {"nothing but NUL bytes up to the line end", "Readers pass over what stands behind a NUL."};
        case ECellFault::NoMark:
            return {"a text that begins " + Quoted(kFileTypeText), "No reader takes the file."};
        case ECellFault::NoKey:
            return {"the key " + Quoted(key), "Readers find cells by their place and take the value as told."};
        case ECellFault::NotFixed:
            return {Quoted(cell.standBy->empty() ? key : key + '=' + std::string(*cell.standBy)),
                    "No writer puts anything else there; readers don't look at it."};
        case ECellFault::LoneSign:
            return {"the key alone if there is no value", "Some readers see an item where there is none."};
        case ECellFault::NoNumber:
            return {"a number behind " + Quoted(key + '='), "Readers take it for 0."};
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

template <class Cells>
void JudgeCells(const Cells& cells, std::string_view bytes, std::int32_t version, const CHeaderPlace& place,
                CFindings& findings) {
    std::int64_t offset = place.offset;
    for (const auto& cell : cells) {
        if (!HasCell(cell, version)) continue;
        const std::string where = cell.key.empty() ? place.name : place.name + " > " + std::string(cell.key);
        if (bytes.size() < cell.width) {
            findings.Add({where, offset, "the end of the file", "the rest of the header",
                          "The file was cut; readers take 0 for what is missing."});
            return;
        }
        const std::string_view cellBytes = bytes.substr(0, cell.width);
        if (const auto fault = FaultOf(cell, cellBytes)) {
            auto [expected, meaning] = WordsFor(*fault, cell);
            findings.Add({where, offset, Quoted(IsBehindText(fault->kind) ? cellBytes : CellText(cellBytes)),
                          std::move(expected), std::move(meaning)});
        }
        bytes.remove_prefix(cell.width);
        offset += static_cast<std::int64_t>(cell.width);
    }
}

// ---- Lists against their counts -------------------------------------------------------------------------------------

std::size_t CountItems(std::string_view cell) {
    std::size_t count = 0;
    for (CCellItems items(cell); items.Next();)
        ++count;
    return count;
}

void JudgeListLengths(std::string_view bytes, std::int32_t version, const CHeaderPlace& place, CFindings& findings) {
    std::int64_t channels = 0;
    std::int64_t offset = place.offset;
    for (const auto& cell : kRecordingCells) {
        if (!HasCell(cell, version)) continue;
        if (bytes.size() < cell.width) return;
        const std::string_view cellBytes = bytes.substr(0, cell.width);
        if (std::holds_alternative<CChannelCount>(cell.member)) channels = ParseInt64(CellValue(cellBytes));
        if (std::holds_alternative<CChannelList>(cell.member)) {
            const auto items = static_cast<std::int64_t>(CountItems(cellBytes));
            if (items != channels)
                findings.Add({place.name + " > " + std::string(cell.key), offset,
                              Counted(static_cast<std::uint64_t>(items), "item"),
                              std::to_string(channels) + ", one for each channel",
                              items < channels ? "The channels behind keep their defaults."
                                               : "Readers pass over the items behind."});
        }
        bytes.remove_prefix(cell.width);
        offset += static_cast<std::int64_t>(cell.width);
    }
}

}  // namespace

void JudgeFileCells(std::string_view bytes, const CHeaderPlace& place, CFindings& findings) {
    JudgeCells(kFileCells, bytes, kNewestVersion, place, findings);
}

void JudgeRecordingCells(std::string_view bytes, std::int32_t version, const CHeaderPlace& place, CFindings& findings) {
    JudgeCells(kRecordingCells, bytes, version, place, findings);
    JudgeListLengths(bytes, version, place, findings);
}

void JudgeSegmentCells(std::string_view bytes, const CHeaderPlace& place, CFindings& findings) {
    JudgeCells(kSegmentCells, bytes, kNewestVersion, place, findings);
}

bool IsExactSegmentHdr(std::string_view bytes) {
    if (bytes.size() != kSegmentHdrSize) return false;
    CSegmentHdr header;
    Decode(bytes, header);
    std::array<char, kSegmentHdrSize> exact{};
    Encode(header, exact);  // no number is too long for its cell
    return std::equal(bytes.begin(), bytes.end(), exact.begin());
}

}  // namespace vxfile
