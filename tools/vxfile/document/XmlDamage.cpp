#include "tools/vxfile/document/XmlDamage.h"

#include <vector>

#include "tools/vxfile/document/XmlTokens.h"
#include "tools/vxfile/report/Text.h"

namespace vxfile {

namespace {

using CTags = std::vector<std::string_view>;

std::string EarlyEnd(const CXmlToken& token, const CTags& open) {
    const std::string where = open.empty() ? "a tag" : "<" + Readable(open.back()) + ">";
    return "The document ends at byte " + std::to_string(token.offset) + ", within " + where +
           ": it was cut or damaged, and what stood behind isn't told. vxfile verify tells more.";
}

std::string WrongEnd(const CXmlToken& token, const CTags& open) {
    const std::string wanted = open.empty() ? "the end of the file" : "</" + Readable(open.back()) + ">";
    return "The document is damaged: at byte " + std::to_string(token.offset) + " stands " + Quoted(token.bytes) +
           ", where " + wanted + " should; what is told may lack something. vxfile verify tells more.";
}

}  // namespace

std::string DamageOfDocument(std::string_view document) {
    using EToken = CXmlToken::EKind;
    CTags open;
    CXmlTokens tokens(document.substr(0, document.find('\0')));  // there it ends to readers
    for (CXmlToken token = tokens.Next();; token = tokens.Next()) {
        const bool isEnd = token.kind == EToken::Nothing;
        if (token.kind == EToken::Broken || (isEnd && !open.empty())) return EarlyEnd(token, open);
        if (isEnd) return {};
        if (token.kind == EToken::Start) open.push_back(token.tag);
        if (token.kind != EToken::End) continue;
        if (open.empty() || open.back() != token.tag) return WrongEnd(token, open);
        open.pop_back();
    }
}

}  // namespace vxfile
