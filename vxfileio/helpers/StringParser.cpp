#include "vxfileio/helpers/StringParser.h"

#include <cstddef>

#include "vxfileio/helpers/Tokenizer.h"

namespace vxfileio::helpers {

namespace {

constexpr const char* kOutOfRange = "ERROR: Array index out of range.";

CStdStr WithoutBlanks(const std::string& text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace

CStringParser::CStringParser(const CStdStr& text, const char* separators, char /*quote*/)
    : m_fields{text}, m_separators(separators) {
    if (m_separators.Text().empty()) {
        m_fields.push_back(text);
    } else {
        const CCharSet set(m_separators.Text());
        CTokenizer tokens(text.Text(), set);
        while (const auto token = tokens.Next())
            m_fields.emplace_back(std::string(*token));
    }
    m_count = static_cast<std::int32_t>(m_fields.size()) - 1;
}

CStdStr CStringParser::GetField(std::int32_t index, bool strip) const {
    if (index < 0 || index > m_count) return kOutOfRange;
    const CStdStr& field = m_fields[static_cast<std::size_t>(index)];
    return strip ? WithoutBlanks(field.Text()) : field;
}

}  // namespace vxfileio::helpers
