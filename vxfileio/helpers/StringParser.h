#pragma once

#include <cstdint>
#include <vector>

#include "vxfileio/helpers/StdStr.h"

namespace vxfileio::helpers {

/// Splits a text into tokens and keeps them, by the rules of `vxfileio::helpers::CTokenizer`.
class CStringParser {
 public:
    /// Parses at once. Without separators the whole text is the one token. Nothing is ever quoted: every caller passes
    /// 0.
    CStringParser(const CStdStr& text, const char* separators, char quote = 0);
    virtual ~CStringParser() = default;
    CStringParser(const CStringParser&) = default;
    CStringParser& operator=(const CStringParser&) = default;

    /// Returns the number of tokens.
    std::int32_t GetCount() const { return m_count; }

    /// Returns the whole text at 0 and the tokens from 1 on, without blanks around them if `strip` is set. For an
    /// index out of range, returns the text "ERROR: Array index out of range.", which parses as the number 0.
    CStdStr GetField(std::int32_t index, bool strip) const;

 private:
    std::vector<CStdStr> m_fields;  ///< The whole text, then the tokens.
    std::int32_t m_count = 0;
    CStdStr m_separators;
};

}  // namespace vxfileio::helpers
