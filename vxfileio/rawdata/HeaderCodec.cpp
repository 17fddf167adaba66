#include "vxfileio/rawdata/HeaderCodec.h"

#include <concepts>
#include <string>
#include <utility>

#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/helpers/Digits.h"
#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/CellCodec.h"
#include "vxfileio/rawdata/RawDataErrors.h"

namespace vxfileio::rawdata {

namespace {

/// One cell of a table. Each has a type of its own, so that its key is known where the code for it is made: the header
/// of a segment is encoded or decoded for every call of the system or two.
template <const auto& Cells, std::size_t Number>
struct CTableCell {
    static constexpr std::string_view kKey = Cells[Number].key;
    static constexpr std::size_t kWidth = Cells[Number].width;
    static constexpr auto kMember = std::get<Cells[Number].member.index()>(Cells[Number].member);
    static constexpr std::optional<std::string_view> kStandBy = Cells[Number].standBy;
};

void RefuseUnlessFitting(const CCellWriter& writer, std::string_view key) {
    if (!writer.Fits()) throw CExcVXReader(kDoesNotFit + std::string(key));
}

// ---- Values to text -------------------------------------------------------------------------------------------------

void Put(CCellWriter& writer, const std::string& value) { writer.PutValue(value); }

void Put(CCellWriter& writer, std::integral auto number) { writer.PutItem(number); }

void Put(CCellWriter& writer, double number) { writer.PutItem(helpers::CNumberText::General(number).View()); }

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

/// Encodes one cell of a table at the front of `bytes`, and takes that off.
template <const auto& Cells, std::size_t Number>
void EncodeCell(const auto& header, std::span<char>& bytes) {
    using CCell = CTableCell<Cells, Number>;
    CCellWriter writer(bytes.first(CCell::kWidth), CCell::kKey);
    if constexpr (CCell::kStandBy) {
        writer.PutValue(*CCell::kStandBy);
    } else {
        PutMember(writer, header, CCell::kMember);
    }
    RefuseUnlessFitting(writer, CCell::kKey);
    bytes = bytes.subspan(CCell::kWidth);
}

template <const auto& Cells>
void EncodeCells(const auto& header, std::span<char> bytes) {
    [&]<std::size_t... Numbers>(std::index_sequence<Numbers...>) { (EncodeCell<Cells, Numbers>(header, bytes), ...); }
    (std::make_index_sequence<Cells.size()>());
}

// ---- Text to values -------------------------------------------------------------------------------------------------

void FromText(std::string_view text, std::int32_t& value) { value = helpers::ParseInt32(text); }
void FromText(std::string_view text, std::int64_t& value) { value = helpers::ParseInt64(text); }
void FromText(std::string_view text, std::uint64_t& value) { value = helpers::ParseUInt64(text); }
void FromText(std::string_view text, double& value) { value = helpers::ParseDouble(text); }

/// The bytes of a cell on its way into a header.
template <class CCell>
struct CCellBytes {
    std::string_view bytes;
};

template <class CCell>
void Take(const CCellBytes<CCell>& cell, std::string& value) {
    value = CellValue(cell.bytes);
}

template <class CCell, class Number>
void Take(const CCellBytes<CCell>& cell, Number& number) {
    const std::string_view text = CellNumber(cell.bytes, CCell::kKey);
    if constexpr (std::signed_integral<Number>) {
        const auto value = helpers::ParseShortWhole(text);
        if (value && std::in_range<Number>(*value)) {
            number = static_cast<Number>(*value);
            return;
        }
    }
    FromText(text, number);
}

template <class CCell>
void Take(const CCellBytes<CCell>& cell, std::vector<std::int64_t>& list) {
    list.clear();
    CCellItems items(cell.bytes);
    while (const auto item = items.Next())
        list.push_back(helpers::ParseInt64(*item));
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
void TakeChannelItem(std::string_view item, std::int64_t& interval) { interval = helpers::ParseInt32(item); }
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
    using CCell = CTableCell<Cells, Number>;
    if (!HasCell(Cells[Number], version)) return true;
    const CCellBytes<CCell> taken{bytes.substr(0, CCell::kWidth)};
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
    using CCell = CTableCell<Cells, Number>;
    constexpr std::size_t kOffset = SizeOf(std::span(Cells).first(Number));
    TakeMember(CCellBytes<CCell>{bytes.substr(kOffset, CCell::kWidth)}, header, CCell::kMember);
}

}  // namespace

void Encode(const CRawDataFileHdr& header, std::span<char, kFileHdrSize> bytes) {
    EncodeCells<kFileCells>(header, bytes);
}

void Encode(const CRawDataRecordingHdr& header, std::span<char, kRecordingHdrSize> bytes) {
    EncodeCells<kRecordingCells>(header, bytes);
}

void Encode(const CSegmentHdr& header, std::span<char, kSegmentHdrSize> bytes) {
    EncodeCells<kSegmentCells>(header, bytes);
}

void EncodeCell(const CCellPlace& place, std::string_view value, std::span<char> cell) {
    CCellWriter writer(cell.first(place.width), place.key);
    writer.PutValue(value);
    RefuseUnlessFitting(writer, place.key);
}

void EncodeCell(const CCellPlace& place, std::int64_t value, std::span<char> cell) {
    CCellWriter writer(cell.first(place.width), place.key);
    writer.PutItem(value);
    RefuseUnlessFitting(writer, place.key);
}

void Decode(std::string_view bytes, CRawDataFileHdr& header) { DecodeCells<kFileCells>(kNewestVersion, bytes, header); }

void Decode(std::string_view bytes, CSegmentHdr& header) {
    DecodeFront(bytes, header);
    DecodeRest(bytes, header);
}

void DecodeFront(std::string_view bytes, CSegmentHdr& header) {
    DecodeCellInPlace<kSegmentCells, NumberOf(kSegmentCells, "ID")>(bytes, header);
    DecodeCellInPlace<kSegmentCells, NumberOf(kSegmentCells, "FPosNextSegmentHdr")>(bytes, header);
}

void DecodeRest(std::string_view bytes, CSegmentHdr& header) {
    DecodeCellInPlace<kSegmentCells, NumberOf(kSegmentCells, "TimeFrom")>(bytes, header);
    DecodeCellInPlace<kSegmentCells, NumberOf(kSegmentCells, "TimeTo")>(bytes, header);
    DecodeCellInPlace<kSegmentCells, NumberOf(kSegmentCells, "Size")>(bytes, header);
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
