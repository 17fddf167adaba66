#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "vxfileio/xmlarchive/XmlInput.h"
#include "vxfileio/xmlarchive/XmlNameStack.h"
#include "vxfileio/xmlarchive/XmlState.h"

namespace gd_xml_stream {

/// Splits a document into events. Keeps the names of the open elements and the current element in its block, and
/// nothing else of the document.
///
/// Rejects nothing: documents that aren't well-formed are read by fixed rules, which are looser than those of XML.
/// There are files that rely on them.
class XmlScanner {
 public:
    /// `file` isn't owned; it is read in blocks of `blockSize` bytes.
    XmlScanner(CFileBuffer* file, std::size_t blockSize) : m_input(file, blockSize) {}

    /// Moves to the first "<" that doesn't open a declaration, comment or instruction. If other text precedes the first
    /// tag, moves past its first byte and returns false.
    bool SkipProlog();

    /// Moves to the next event. If it returns false, there is no current element.
    bool Next();

    /// The current element: its name, the byte that ended the name, and all that followed up to the next tag, CDATA
    /// sections included as plain text. At an end tag the name alone, without an element nothing. It lives until the
    /// next event.
    std::string_view Element() const { return m_input.Gathered(); }

    /// Returns the number of bytes that the element takes in the document, from its "<" on; 0 without an element.
    std::size_t ElementSize() const { return Element().empty() ? 0 : Element().size() + 1; }

    /// The name alone; empty without an element.
    std::string_view Name() const { return Element().substr(0, m_nameSize); }

    /// State bits of the current element: `XmlState::kHasChildren`, `kEndTag`, `kHasSection`.
    std::uint32_t State() const { return m_state; }

    /// Whether the current element is `<name/>`.
    bool IsSelfClosing() const { return m_selfClosing; }

    /// Returns the most bytes that the document can still have; see `XmlInput::Remaining`.
    std::size_t Remaining() { return m_input.Remaining(); }

    /// Why the last `Next` that failed did so. Never cleared, since a failure makes every later comment the end.
    XmlError LastError() const { return m_lastError; }

 private:
    void ForgetElement();
    bool ReadEvent();
    bool FindTag();
    bool SkipComment();
    bool ReadEndTag();
    bool ReadPlainLeaf();
    bool ReadStartTag();
    bool CollectText();
    bool CollectSection();
    bool CollectRun(std::string_view run, bool& keepBlanks);
    bool LastVisibleIsSlash() const;
    bool Fail(XmlError error);

    XmlInput m_input;
    XmlNameStack m_open;
    std::size_t m_nameSize = 0;  ///< Of the element, the name at its front.
    std::uint32_t m_state = 0;
    XmlError m_lastError = XmlError::None;
    bool m_selfClosing = false;
    bool m_tagTaken = false;  ///< The "<" of the next tag was passed already, with the element before it.
};

}  // namespace gd_xml_stream
