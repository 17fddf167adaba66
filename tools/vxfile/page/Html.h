#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "tools/vxfile/report/Json.h"

namespace vxfile::page {

/// Returns a text as the content of an element.
std::string EscapedText(std::string_view text);

/// Returns a text as the value of an attribute, to be put between quotation marks.
std::string EscapedAttribute(std::string_view text);

/// Returns the name of a file in the same folder as an address.
std::string AddressOf(std::string_view name);

/// Writes a page. It is the only place that writes markup, so a text from a file can't become markup.
class CHtml {
 public:
    using CAttribute = std::pair<std::string_view, std::string>;
    using CAttributes = std::initializer_list<CAttribute>;

    /// Begins the document.
    CHtml();

    /// Writes an element. `content` writes what is in it.
    void Element(std::string_view tag, CAttributes attributes, const std::function<void()>& content);
    /// Writes an element with a text in it.
    void Element(std::string_view tag, CAttributes attributes, std::string_view text);
    /// Writes an element that has no content and no end tag, such as `meta` or `input`.
    void Void(std::string_view tag, CAttributes attributes);
    /// Writes a text.
    void Text(std::string_view text);

    /// Writes a script or style sheet that was embedded when the program was built. It is written as it is.
    void Embed(std::string_view tag, std::string_view asset);
    /// Writes data for scripts, in an element with this ID. Nothing in it is run.
    void Data(std::string_view id, const CJson& json);
    /// The same with a text, which is written as it is. Requires: it has no `<`.
    void RawData(std::string_view id, std::string_view text);

    /// Returns the bytes written so far.
    const std::string& Bytes() const { return m_bytes; }

 private:
    void StartTag(std::string_view tag, CAttributes attributes);
    void EndTag(std::string_view tag);

    std::string m_bytes;
};

}  // namespace vxfile::page
