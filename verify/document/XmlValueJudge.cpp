#include "verify/document/XmlValueJudge.h"

#include <algorithm>
#include <array>

#include "verify/Text.h"
#include "vxfileio/helpers/NumberText.h"

using namespace vxfileio::helpers;
using vxfileio::xmlarchive::CXmlElement;
using vxfileio::xmlarchive::EXmlKind;

namespace vxfile {

namespace {

using CVerdict = std::optional<CValueFault>;

// ---- Texts ----------------------------------------------------------------------------------------------------------

constexpr std::array<std::string_view, 4> kNamedReferences = {"&quot;", "&amp;", "&lt;", "&gt;"};

/// Returns the length of the reference at the front; 0 if writers never write such a reference.
std::size_t SizeOfReference(std::string_view text) {
    constexpr std::size_t kNumeric = 6;  // &#128;
    for (const auto reference : kNamedReferences) {
        if (text.starts_with(reference)) return reference.size();
    }
    if (!text.starts_with("&#") || text.size() < kNumeric || text[kNumeric - 1] != ';') return 0;
    const std::string_view digits = text.substr(2, 3);
    const bool areDigits = std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; });
    const std::int32_t value = ParseInt32(digits);
    return areDigits && value >= 128 && value <= 255 ? kNumeric : 0;
}

/// The number of bytes of a decoded text, and its first fault.
struct CTextLength {
    std::size_t bytes = 0;
    CVerdict fault = std::nullopt;
};

CTextLength Measure(std::string_view text) {
    CTextLength length;
    while (!text.empty()) {
        const char c = text.front();
        std::size_t size = 1;
        if (c == '&') {
            size = SizeOfReference(text);
            if (size == 0) {
                length.fault = CValueFault{"&quot; &amp; &lt; &gt; or &#128; to &#255;",
                                           "The reference has another form; readers may decode it differently."};
                return length;
            }
        } else if (c == '"' || c == '>' || static_cast<unsigned char>(c) >= 0x80) {
            length.fault = CValueFault{"a reference instead of " + Quoted({&c, 1}),
                                       "Another program wrote this; this library reads the byte as it is."};
            return length;
        }
        ++length.bytes;
        text.remove_prefix(size);
    }
    return length;
}

CVerdict JudgeCharacter(std::string_view text) {
    const CTextLength length = Measure(text);
    if (length.fault || length.bytes <= 1) return length.fault;
    return CValueFault{"one character", "Readers use the first one."};
}

CVerdict JudgeWord(const CXmlElement& rule, std::string_view text) {
    if (std::ranges::find(rule.words, text) != rule.words.end()) return std::nullopt;
    if (text.empty() && rule.mayBeEmpty) return std::nullopt;
    return CValueFault{vxfileio::xmlarchive::OneOf(rule.words), "Readers treat it as unknown."};
}

// ---- Numbers --------------------------------------------------------------------------------------------------------

/// Returns the number as writers write it.
std::string WrittenNumber(EXmlKind kind, std::string_view text) {
    const auto written = [](auto number) { return std::string(CNumberText(number).View()); };
    switch (kind) {
        case EXmlKind::Bool:
            return ParseInt32(text) == 1 ? "1" : "0";
        case EXmlKind::Int32:
            return written(ParseInt32(text));
        case EXmlKind::Int64:
            return written(ParseInt64(text));
        case EXmlKind::UInt16:
            return written(static_cast<std::uint16_t>(ParseUInt32(text)));
        case EXmlKind::UInt32:
            return written(ParseUInt32(text));
        case EXmlKind::UInt64:
            return written(ParseUInt64(text));
        default:
            return std::string(CNumberText::RoundTrip(ParseDouble(text)).View());
    }
}

CVerdict JudgeNumber(EXmlKind kind, std::string_view text) {
    if (text.empty()) return CValueFault{"a number", "Readers keep the default."};
    std::string written = WrittenNumber(kind, text);
    if (text == written) return std::nullopt;
    return CValueFault{"the number as writers write it, " + Quoted(written), "Readers read it as " + written + "."};
}

CVerdict JudgeSamples(std::string_view text) {
    while (!text.empty()) {
        const auto end = text.find(';');
        if (end == std::string_view::npos)
            return CValueFault{"a semicolon after each sample", "Readers read the last sample as 0."};
        const std::string_view sample = text.substr(0, end);
        const std::string written(CNumberText::General(ParseDouble(sample)).View());
        if (sample != written)
            return CValueFault{Quoted(written) + " instead of " + Quoted(sample),
                               "Readers read it as " + written + "."};
        text.remove_prefix(end + 1);
    }
    return std::nullopt;
}

}  // namespace

std::optional<CValueFault> JudgeXmlValue(const CXmlElement& rule, std::string_view text) {
    switch (rule.kind) {
        case EXmlKind::Text:
            if (auto fault = Measure(text).fault; fault || rule.words.empty()) return fault;
            return JudgeWord(rule, text);
        case EXmlKind::Word:
            return JudgeWord(rule, text);
        case EXmlKind::Character:
            return JudgeCharacter(text);
        case EXmlKind::Samples:
            return JudgeSamples(text);
        default:
            return JudgeNumber(rule.kind, text);
    }
}

std::size_t CountSamples(std::string_view text) { return static_cast<std::size_t>(std::ranges::count(text, ';')); }

}  // namespace vxfile
