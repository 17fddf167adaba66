#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "vxfileio/xmlarchive/XmlFaults.h"
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
    XmlScanner(const XmlScanner&) = delete;
    XmlScanner& operator=(const XmlScanner&) = delete;

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

    /// Returns whether reading ended before the end of the file, since the system refused more.
    bool IsReadFailed() const { return m_input.IsReadFailed(); }

    /// Returns whether the document ended with a NUL rather than with its file.
    bool EndsInNul() const { return m_input.EndsInNul(); }

    /// Returns the offset of the next byte in the document.
    std::uint64_t Offset() const { return m_input.Offset(); }

    /// Returns whether the root was closed.
    bool IsRootClosed() const { return m_open.IsEmpty() && m_levels.front().children > 0 && !m_endsInside; }

    /// Returns the name of the root, or of the first child of it with this name; empty if there is none. Only elements
    /// with children are known, and of these the first few.
    std::string_view Root() const { return m_outline.front(); }
    bool HasSection(std::string_view name) const { return SectionAt(name) != m_outline.end(); }

    /// Returns whether the root has a child with the name `first`, and it begins before any with the name `second`.
    bool IsAhead(std::string_view first, std::string_view second) const { return SectionAt(first) < SectionAt(second); }

    /// Moves past blanks, comments and instructions. Returns false if something else follows, a NUL for instance.
    /// Requires: the root was closed.
    bool SkipEpilog();

    /// Returns the first bytes of the document, as `SkipProlog` found them.
    std::string_view Beginning() const { return m_beginning; }

    /// Makes the current element, if it has children, a list that claims this many. At its end its children are
    /// counted, and paths have their numbers. A list that claims `kAnyNumber` isn't checked.
    void MakeList(std::int64_t claimed);
    static constexpr std::int64_t kAnyNumber = INT64_MIN;

    /// Reports if the current element, a start tag, turns out to have no children. Comments aren't children.
    void NeedChildren();

    /// The reason for the last failure of `Next`. Never cleared, since after a failure every comment ends the document.
    XmlError LastError() const { return m_lastError; }

 protected:
    /// The state of an open element.
    struct CLevel {
        std::uint64_t offset = 0;    ///< The offset of its start tag.
        std::uint64_t children = 0;  ///< The number of children so far.
        std::int64_t claimed = kAnyNumber;
        bool isList = false;
        std::uint64_t neededAt = 0;  ///< The offset of its content if it needs children, otherwise 0.
    };

    /// Returns the path of the current element: the tags from the root on, with `/` between them, and after a list the
    /// number of its entry: "Vexaprobe/Settings/PropertyRecordPlate/Wells[2]/Well/ChID".
    std::string Path() const;

    /// Returns the offset of the current element's text.
    std::uint64_t TextOffset() const;

    /// The innermost open element.
    CLevel& Level() { return *m_level; }

    /// Compares the number of entries of a list with what it claims. The list is the innermost open element, or its
    /// child `leaf`.
    void CheckCount(const CLevel& list, std::uint64_t entries, std::string_view leaf);

    XmlFaults m_faults;
    /// The offset after the "<" of the current element. A short element is still where it was read.
    static constexpr std::uint64_t kInMemory = 0;
    std::uint64_t m_elementAt = kInMemory;

 private:
    auto SectionAt(std::string_view name) const -> const std::string* {
        return std::find(m_outline.begin() + 1, m_outline.end(), name);
    }
    void ForgetElement();
    void NoteNoContent(std::uint64_t offset, std::string_view leaf);
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
    void OpenElement();
    void FindLevel() { m_level = &m_levels[std::min(m_open.Size(), kMostLevels)]; }
    bool PassLeafEnd();
    void CheckLeafEnd();
    void CheckNameEnd();
    void CheckPlainEnd(std::string_view name, std::string_view end, std::size_t at);
    void NoteEndInside(std::string_view undelivered = {});
    void NoteWrongEnd(std::string_view found, std::string_view open, std::uint64_t offset, std::string_view leaf);
    std::string PathTo(std::string_view leaf) const;

    XmlInput m_input;
    XmlNameStack m_open;
    /// By depth, with that of the document first. Elements that are deeper than any form share the last one, which
    /// isn't checked.
    static constexpr std::size_t kMostLevels = 24;
    std::array<CLevel, kMostLevels + 1> m_levels{};
    CLevel* m_level = m_levels.data();     ///< That of the innermost open element.
    std::array<std::string, 4> m_outline;  ///< The root, then its children; long names are cut.
    std::string m_beginning;
    std::size_t m_nameSize = 0;  ///< Of the element, the name at its front.
    std::uint32_t m_state = 0;
    XmlError m_lastError = XmlError::None;
    bool m_selfClosing = false;
    bool m_endsInside = false;
    bool m_tagTaken = false;  ///< The "<" of the next tag was passed already, with the element before it.
};

}  // namespace gd_xml_stream
