#include "vxfileio/xmlarchive/XmlFaults.h"

#include "vxfileio/helpers/PrintableText.h"

namespace gd_xml_stream {

namespace {

using vxfileio::helpers::Quoted;

/// Returns "PATH (offset N)", or "Offset N" outside of the root.
std::string PlaceOf(const XmlFaults::CFault& fault) {
    const std::string offset = std::to_string(fault.offset);
    return fault.path.empty() ? "Offset " + offset : fault.path + " (offset " + offset + ')';
}

/// Describes the end of a document. What follows a NUL isn't part of it.
std::string EndOf(const XmlFaults::CFault& fault) {
    std::string text = "The document ends ";
    if (!fault.expected.empty()) text += "with " + fault.expected + ' ';
    text += "at offset " + std::to_string(fault.offset) + ", inside ";
    text += fault.path.empty() ? "its first tag" : fault.path;
    if (!fault.found.empty()) text += "; <" + fault.found + "> wasn't read, since no tag follows it";
    return text + '.';
}

std::string SentenceOf(XmlFault kind, const XmlFaults::CFault& fault) {
    const std::string place = PlaceOf(fault);
    switch (kind) {
        case XmlFault::EndsInside:
            return EndOf(fault);
        case XmlFault::WrongEndTag:
            return place + ": found </" + fault.found + "> instead of " + fault.expected + '.';
        case XmlFault::TooFew:
        case XmlFault::TooMany:
            return place + ": the list has " + fault.found + ", but its Size is " + fault.expected + '.';
        case XmlFault::LongText:
            return place + ": only the first character of " + Quoted(fault.found) + " was read.";
        case XmlFault::NoContent:
            return place + ": the element has no content.";
        case XmlFault::Attribute:
            return place + ": the value was read from an attribute, " + Quoted(fault.found) + '.';
        case XmlFault::NoKey:
            return place + ": found <" + fault.found + "> instead of <" + fault.expected + "> as the first child.";
        case XmlFault::CutText:
            return place + ": a comment or an element ends the value " + Quoted(fault.found) + '.';
        case XmlFault::BadTag:
            return place + ": the tag " + Quoted(fault.found) + " was read as <" + fault.expected + ">.";
        default:
            break;
    }
    const std::string found = fault.found.empty() ? "the element is empty" : Quoted(fault.found) + " isn't";
    return place + ": " + found + (fault.found.empty() ? " instead of " : " ") + fault.expected + '.';
}

}  // namespace

std::string XmlFaults::Text() const {
    std::string text;
    for (std::size_t kind = 0; kind < m_faults.size(); ++kind) {
        const CFault& fault = m_faults[kind];
        if (fault.count == 0) continue;
        if (!text.empty()) text += ' ';
        text += SentenceOf(static_cast<XmlFault>(kind), fault);
        const auto further = fault.count - 1;
        if (further > 0 && static_cast<XmlFault>(kind) != XmlFault::EndsInside)
            text += " There " + std::string(further == 1 ? "is 1" : "are " + std::to_string(further)) +
                    " more of this kind.";
    }
    return text;
}

}  // namespace gd_xml_stream
