#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <variant>

#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/CellCodec.h"
#include "vxfileio/rawdata/RawDataFormat.h"

/// @file
/// The values of headers as text in their cells: how each type is written, and each kind of member.

namespace vxfileio::rawdata {

inline void Put(CCellWriter& writer, const std::string& value) { writer.PutValue(value); }

inline void Put(CCellWriter& writer, std::integral auto number) { writer.PutItem(number); }

inline void Put(CCellWriter& writer, double number) { writer.PutItem(helpers::CNumberText::General(number).View()); }

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

inline void PutMember(CCellWriter& writer, const CRawDataRecordingHdr& header, CChannelCount member) {
    Put(writer, static_cast<std::uint64_t>((header.*member.channels).size()));
}

inline void PutMember(CCellWriter& writer, const CRawDataRecordingHdr& header, CChannelList member) {
    const auto putAll = [&](auto field) {
        for (const auto& channel : header.*member.channels)
            Put(writer, channel.*field);
    };
    std::visit(putAll, member.field);
}

}  // namespace vxfileio::rawdata
