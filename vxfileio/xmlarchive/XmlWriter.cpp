#include "vxfileio/xmlarchive/XmlWriter.h"

#include <array>

#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/xmlarchive/XmlState.h"
#include "vxfileio/xmlarchive/XmlText.h"

namespace gd_xml_stream {

using vxfileio::helpers::CNumberText;

XmlWriter::XmlWriter(CFileBuffer* file, std::size_t blockSize, unsigned char* buffer) : m_file(file) {
    if (file == nullptr) return;
    if (buffer == nullptr) m_own = std::make_unique_for_overwrite<char[]>(blockSize);
    m_block = {buffer == nullptr ? m_own.get() : reinterpret_cast<char*>(buffer), blockSize};
}

void XmlWriter::Detach() {
    m_file = nullptr;
    m_block = {};
    m_used = 0;
}

void XmlWriter::Flush() {
    WriteBlock();
    if (m_file != nullptr) m_file->Flush();
}

void XmlWriter::WriteBlock() {
    if (m_file != nullptr) m_file->Write(m_block.data(), m_used);
    m_used = 0;
}

void XmlWriter::AppendOverBlocks(std::string_view text) {
    if (m_file == nullptr) return;
    while (!text.empty()) {
        const std::size_t piece = text.copy(m_block.data() + m_used, m_block.size() - m_used);
        m_used += piece;
        text.remove_prefix(piece);
        if (m_used == m_block.size()) WriteBlock();
    }
}

void XmlWriter::AppendValue(const XmlValue& value) {
    switch (value.Type()) {
        case XmlType::Int32:
            return Append(CNumberText(value.AsInt32()).View());
        case XmlType::UInt16:
            return Append(CNumberText(value.AsUInt16()).View());
        case XmlType::UInt32:
            return Append(CNumberText(value.AsUInt32()).View());
        case XmlType::Int64:
            return Append(CNumberText(value.AsInt64()).View());
        case XmlType::UInt64:
            return Append(CNumberText(value.AsUInt64()).View());
        case XmlType::Double:
            return Append(CNumberText::RoundTrip(value.AsDouble()).View());
        case XmlType::Bool:
            return Append(value.AsBool() ? "1" : "0");
        case XmlType::ConstText:
        case XmlType::Text:
            if (value.AsText() == nullptr) return;
            return PutCoded(value.AsText(), [this](std::string_view piece) { Append(piece); });
    }
}

void XmlWriter::WriteDeclaration(std::string_view attributes) {
    Append("<?xml ");
    Append(attributes);
    Append(" ?>");
}

void XmlWriter::OpenChild(std::string_view name) {
    if ((m_state & XmlState::kTagOpen) != 0 && (m_state & XmlState::kHasText) == 0) Append(">");
    m_outerStates.push_back((m_state | XmlState::kHasChildren) & ~XmlState::kPassing);
    m_state = XmlState::kOpen | XmlState::kTagOpen;
    Append("<");
    Append(name);
    m_open.Push(name);
}

void XmlWriter::PutAttribute(std::string_view name, const XmlValue& value) {
    Append(" ");
    Append(name);
    Append("=\"");
    AppendValue(value);
    Append("\"");
}

void XmlWriter::BeginText() {
    Append(">");
    m_state |= XmlState::kHasText;
}

void XmlWriter::PutValue(const XmlValue& value) {
    BeginText();
    AppendValue(value);
}

void XmlWriter::PutSamples(const std::vector<double>& samples) {
    BeginText();
    std::array<char, 1024> texts{};
    char* end = texts.data();
    const auto append = [&] { Append({texts.data(), static_cast<std::size_t>(end - texts.data())}); };
    for (const double sample : samples) {
        if (texts.data() + texts.size() - end <= static_cast<std::ptrdiff_t>(vxfileio::helpers::kMostGeneralSize)) {
            append();
            end = texts.data();
        }
        end = vxfileio::helpers::WriteGeneral(end, sample);
        *end++ = ';';
    }
    append();
}

void XmlWriter::NoteCutText() {
    if (m_cuts++ > 0) return;
    for (std::size_t depth = 0; depth < m_open.Size(); ++depth)
        m_firstCut.append(depth == 0 ? "" : "/").append(m_open.At(depth));
}

std::string XmlWriter::CutTexts() const {
    if (m_cuts == 0) return {};
    const std::string others = m_cuts == 1 ? "" : "; " + std::to_string(m_cuts - 1) + " more of this kind";
    return m_firstCut + ": the text has a NUL, and only what precedes it was written" + others;
}

void XmlWriter::CloseElement() {
    if (m_open.IsEmpty()) return;
    if ((m_state & (XmlState::kHasText | XmlState::kHasChildren)) != 0) {
        Append("</");
        Append(m_open.Top());
        Append(">");
    } else {
        Append("/>");
    }
    m_open.Pop();
    m_state = m_outerStates.back();
    m_outerStates.pop_back();
}

}  // namespace gd_xml_stream
