#include "vxfileio/xmlarchive/XmlArchive.h"

#include <algorithm>

#include "vxfileio/xmlarchive/XmlReader.h"
#include "vxfileio/xmlarchive/XmlWriter.h"

namespace gd_xml_stream {

namespace {

/// What a failed operation returns where it returns anything: the system's general failure code.
constexpr std::int32_t kDone = 0;
constexpr auto kFailed = static_cast<std::int32_t>(0x80004005U);

}  // namespace

CXmlFileArchive::CXMLArchive(CFileBuffer* file, std::uint32_t mode, std::int32_t blockSize, unsigned char* buffer)
    : m_stores((mode & kStore) != 0) {
    const auto size = static_cast<std::size_t>(std::max(blockSize, std::int32_t{1}));
    m_writer = std::make_unique<XmlWriter>(m_stores ? file : nullptr, size, buffer);
    m_reader = std::make_unique<XmlReader>(m_stores ? nullptr : file, size);
}

CXmlFileArchive::~CXMLArchive() { m_writer->Flush(); }

void CXmlFileArchive::FlushBuffer() { m_writer->Flush(); }

void CXmlFileArchive::FlushPending() {}

bool CXmlFileArchive::NextElement() { return m_reader->Next(); }

void CXmlFileArchive::Detach() {
    m_writer->Detach();
    m_reader = std::make_unique<XmlReader>(nullptr, 1);
}

CXmlFileArchive& CXmlFileArchive::WriteDeclaration(std::string_view attributes) {
    m_writer->WriteDeclaration(attributes);
    return *this;
}

CXmlFileArchive& CXmlFileArchive::OpenChild(std::string_view name) {
    m_writer->OpenChild(name);
    return *this;
}

CXmlFileArchive& CXmlFileArchive::PutAttribute(std::string_view name, const XmlValue& value) {
    m_writer->PutAttribute(name, value);
    return *this;
}

CXmlFileArchive& CXmlFileArchive::PutValue(const XmlValue& value) {
    m_writer->PutValue(value);
    return *this;
}

CXmlFileArchive& CXmlFileArchive::PutSamples(const std::vector<double>& samples) {
    m_writer->PutSamples(samples);
    return *this;
}

CXmlFileArchive& CXmlFileArchive::CloseElement() {
    m_writer->CloseElement();
    return *this;
}

void CXmlFileArchive::NoteCutText() { m_writer->NoteCutText(); }

std::string CXmlFileArchive::CutTexts() const { return m_writer->CutTexts(); }

std::int32_t CXmlFileArchive::SkipProlog() { return m_reader->SkipProlog() ? kDone : kFailed; }

std::string_view CXmlFileArchive::TagName() const noexcept { return m_reader->Name(); }

bool CXmlFileArchive::IsEndTag() const noexcept { return (m_reader->State() & XmlState::kEndTag) != 0; }

void CXmlFileArchive::GetValue(std::int32_t& value) { m_reader->ReadValue(value); }

void CXmlFileArchive::GetValue(bool& value) { m_reader->ReadValue(value); }

void CXmlFileArchive::GetValue(std::int64_t& value) { m_reader->ReadValue(value); }

void CXmlFileArchive::GetValue(std::uint64_t& value) { m_reader->ReadValue(value); }

void CXmlFileArchive::GetValue(double& value) { m_reader->ReadValue(value); }

void CXmlFileArchive::GetValue(std::uint16_t& value) { m_reader->ReadValue(value); }

void CXmlFileArchive::GetValue(std::uint32_t& value) { m_reader->ReadValue(value); }

void CXmlFileArchive::GetValue(std::string& value) { m_reader->ReadText(value); }

std::string_view CXmlFileArchive::GetText(std::string& room) const { return m_reader->Text(room); }

std::string CXmlFileArchive::GetText() const { return m_reader->ElementText(); }

std::int32_t CXmlFileArchive::GetAttribute(std::string_view name, XmlValue& value) {
    return m_reader->ReadAttribute(name, value) ? kDone : kFailed;
}

std::size_t CXmlFileArchive::GetListSize() { return m_reader->ReadListSize(); }

bool CXmlFileArchive::ListHasEntries() { return m_reader->ReadListClaim() > 0; }

void CXmlFileArchive::GetSamples(std::vector<double>& samples) { m_reader->ReadSamples(samples); }

void CXmlFileArchive::NeedChildren() { m_reader->NeedChildren(); }

void CXmlFileArchive::NoteText(XmlFault kind, std::span<const std::string_view> words) {
    m_reader->NoteText(kind, words);
}

void CXmlFileArchive::NoteMissingKey(std::string_view key) { m_reader->NoteMissingKey(key); }

void CXmlFileArchive::CountEntries() { m_reader->MakeList(XmlReader::kAnyNumber); }

std::string CXmlFileArchive::Finish(std::string_view section) { return m_reader->Finish(section); }

std::uint32_t CXmlFileArchive::ElementState() const noexcept {
    return m_stores ? m_writer->State() : m_reader->State();
}

XmlError CXmlFileArchive::LastError() const noexcept { return m_reader->LastError(); }

}  // namespace gd_xml_stream
