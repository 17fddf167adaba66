#include "vxfileio/rawdata/HeaderCodec.h"

#include <concepts>
#include <string>
#include <utility>

#include "vxfileio/frame/ExcVXReader.h"
#include "vxfileio/helpers/Digits.h"
#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/CellCodec.h"
#include "vxfileio/rawdata/RawDataErrors.h"

namespace vxfileio::rawdata {

namespace {

void RefuseUnlessFitting(const CCellWriter& writer, std::string_view key) {
    if (!writer.Fits()) throw CExcVXReader(kDoesNotFit + std::string(key));
}

// ---- Values to text -------------------------------------------------------------------------------------------------

CNumberText ToText(std::int32_t value) { return CNumberText(value); }
CNumberText ToText(std::int64_t value) { return CNumberText(value); }
CNumberText ToText(std::uint64_t value) { return CNumberText(value); }
CNumberText ToText(double value) { return CNumberText::General(value); }

void Put(CCellWriter& writer, const std::string& value) { writer.PutValue(value); }

void Put(CCellWriter& writer, const auto& number) { writer.PutItem(ToText(number).View()); }

void Put(CCellWriter& writer, const std::vector<std::int64_t>& list) {
    for (const auto number : list)
        Put(writer, number);
}

template <class Header, class Value>
void PutMember(CCellWriter& writer, const Header& header, Value Header::*member) {
    Put(writer, header.*member);
}

template <class Header>
void PutMember(CCellWriter& writer, const Header& header, CBareText<Header> member) {
    writer.PutBare(header.*member.text);
}

template <class Header>
void PutMember(CCellWriter& /*writer*/, const Header& /*header*/, std::monostate /*member*/) {}

void PutMember(CCellWriter& writer, const CRawDataRecordingHdr& header, CChannelCount member) {
    Put(writer, static_cast<std::uint64_t>((header.*member.channels).size()));
}

void PutMember(CCellWriter& writer, const CRawDataRecordingHdr& header, CChannelList member) {
    const auto putAll = [&](auto field) {
        for (const auto& channel : header.*member.channels)
            Put(writer, channel.*field);
    };
    std::visit(putAll, member.field);
}

void EncodeCells(const auto& cells, const auto& header, std::span<char> bytes) {
    for (const auto& cell : cells) {
        CCellWriter writer(bytes.first(cell.width), cell.key);
        if (cell.standBy) {
            writer.PutValue(*cell.standBy);
        } else {
            std::visit([&](auto member) { PutMember(writer, header, member); }, cell.member);
        }
        RefuseUnlessFitting(writer, cell.key);
        bytes = bytes.subspan(cell.width);
    }
}

// ---- Text to values -------------------------------------------------------------------------------------------------

void FromText(std::string_view text, std::int32_t& value) { value = ParseInt32(text); }
void FromText(std::string_view text, std::int64_t& value) { value = ParseInt64(text); }
void FromText(std::string_view text, std::uint64_t& value) { value = ParseUInt64(text); }
void FromText(std::string_view text, double& value) { value = ParseDouble(text); }

/// One cell on its way into a header. Each cell of the tables has a type of its own, so that its key is known where the
/// code for it is made: a segment header is decoded for every system call of a reader.
template <const auto& Cells, std::size_t Number>
struct CCellBytes {
    static constexpr std::string_view kKey = Cells[Number].key;
    static constexpr std::size_t kWidth = Cells[Number].width;
    static constexpr auto kMember = std::get<Cells[Number].member.index()>(Cells[Number].member);

    std::string_view bytes;
};

void Take(const auto& cell, std::string& value) { value = CellValue(cell.bytes); }

template <class Number>
void Take(const auto& cell, Number& number) {
    const std::string_view text = CellNumber(cell.bytes, cell.kKey);
    if constexpr (std::signed_integral<Number>) {
        const auto value = ParseShortWhole(text);
        if (value && std::in_range<Number>(*value)) {
            number = static_cast<Number>(*value);
            return;
        }
    }
    FromText(text, number);
}

void Take(const auto& cell, std::vector<std::int64_t>& list) {
    list.clear();
    CCellItems items(cell.bytes);
    while (const auto item = items.Next())
        list.push_back(ParseInt64(*item));
}

template <class Header, class Value>
bool TakeMember(const auto& cell, Header& header, Value Header::*member) {
    Take(cell, header.*member);
    return true;
}

template <class Header>
bool TakeMember(const auto& cell, Header& header, CBareText<Header> member) {
    header.*member.text = CellText(cell.bytes);
    return true;
}

template <class Header>
bool TakeMember(const auto& /*cell*/, Header& /*header*/, std::monostate /*member*/) {
    return true;
}

bool TakeMember(const auto& cell, CRawDataRecordingHdr& header, CChannelCount member) {
    std::int32_t count = 0;
    Take(cell, count);
    if (count < 0 || static_cast<std::size_t>(count) > kMostChannels) return false;
    (header.*member.channels).assign(static_cast<std::size_t>(count), CRawDataChannelInfo());
    return true;
}

/// Interval items have the range of 32 bits in this format, although the field is wider.
void TakeChannelItem(std::string_view item, std::int64_t& interval) { interval = ParseInt32(item); }
void TakeChannelItem(std::string_view item, auto& value) { FromText(item, value); }

bool TakeMember(const auto& cell, CRawDataRecordingHdr& header, CChannelList member) {
    const auto takeAll = [&](auto field) {
        CCellItems items(cell.bytes);
        for (auto& channel : header.*member.channels) {
            const auto item = items.Next();
            if (!item) break;
            TakeChannelItem(*item, channel.*field);
        }
    };
    std::visit(takeAll, member.field);
    return true;
}

/// Takes one cell of a table off the front of `bytes`, if files of this version have it.
template <const auto& Cells, std::size_t Number>
bool DecodeCell(std::int32_t version, std::string_view& bytes, auto& header) {
    using CCell = CCellBytes<Cells, Number>;
    if (!HasCell(Cells[Number], version)) return true;
    const CCell taken{bytes.substr(0, CCell::kWidth)};
    bytes.remove_prefix(CCell::kWidth);
    return TakeMember(taken, header, CCell::kMember);
}

/// Decodes the cells from number `First` up to `End`.
template <const auto& Cells, std::size_t First = 0, std::size_t End = Cells.size()>
bool DecodeCells(std::int32_t version, std::string_view bytes, auto& header) {
    return [&]<std::size_t... Numbers>(std::index_sequence<Numbers...>) {
        return (DecodeCell<Cells, First + Numbers>(version, bytes, header) && ...);
    }
    (std::make_index_sequence<End - First>());
}

/// Decodes one cell where it stands in a header that is the same in all versions.
template <const auto& Cells, std::size_t Number>
void DecodeCellInPlace(std::string_view bytes, auto& header) {
    using CCell = CCellBytes<Cells, Number>;
    constexpr std::size_t kOffset = SizeOf(std::span(Cells).first(Number));
    TakeMember(CCell{bytes.substr(kOffset, CCell::kWidth)}, header, CCell::kMember);
}

}  // namespace

void Encode(const CRawDataFileHdr& header, std::span<char, kFileHdrSize> bytes) {
    EncodeCells(kFileCells, header, bytes);
}

void Encode(const CRawDataRecordingHdr& header, std::span<char, kRecordingHdrSize> bytes) {
    EncodeCells(kRecordingCells, header, bytes);
}

void Encode(const CSegmentHdr& header, std::span<char, kSegmentHdrSize> bytes) {
    EncodeCells(kSegmentCells, header, bytes);
}

void EncodeCell(const CCellPlace& place, std::string_view value, std::span<char> cell) {
    CCellWriter writer(cell.first(place.width), place.key);
    writer.PutValue(value);
    RefuseUnlessFitting(writer, place.key);
}

void Decode(std::string_view bytes, CRawDataFileHdr& header) { DecodeCells<kFileCells>(kNewestVersion, bytes, header); }

void Decode(std::string_view bytes, CSegmentHdr& header) {
    DecodeAllButTimes(bytes, header);
    DecodeTimes(bytes, header);
}

void DecodeAllButTimes(std::string_view bytes, CSegmentHdr& header) {
    DecodeCellInPlace<kSegmentCells, NumberOf(kSegmentCells, "ID")>(bytes, header);
    DecodeCellInPlace<kSegmentCells, NumberOf(kSegmentCells, "FPosNextSegmentHdr")>(bytes, header);
    DecodeCellInPlace<kSegmentCells, NumberOf(kSegmentCells, "Size")>(bytes, header);
}

void DecodeTimes(std::string_view bytes, CSegmentHdr& header) {
    DecodeCellInPlace<kSegmentCells, NumberOf(kSegmentCells, "TimeFrom")>(bytes, header);
    DecodeCellInPlace<kSegmentCells, NumberOf(kSegmentCells, "TimeTo")>(bytes, header);
}

bool Decode(std::string_view bytes, std::int32_t version, CRawDataRecordingHdr& header) {
    DecodeAllButChannels(bytes, version, header);
    return DecodeChannels(ChannelBytes(bytes, version), header);
}

void DecodeAllButChannels(std::string_view bytes, std::int32_t version, CRawDataRecordingHdr& header) {
    DecodeCells<kRecordingCells, 0, kFirstChannelCell>(version, bytes, header);
}

bool DecodeChannels(std::string_view bytes, CRawDataRecordingHdr& header) {
    return DecodeCells<kRecordingCells, kFirstChannelCell>(kNewestVersion, bytes, header);
}

std::string_view ChannelBytes(std::string_view bytes, std::int32_t version) {
    return bytes.substr(SizeOf(std::span(kRecordingCells).first(kFirstChannelCell), version));
}

}  // namespace vxfileio::rawdata
