#include "vxfileio/settings/SettingsFile.h"

#include <algorithm>
#include <vector>

#include "vxfileio/base/VXExceptions.h"
#include "vxfileio/settings/forms/SettingsForm.h"
#include "vxfileio/xmlarchive/XmlDocument.h"

namespace vxfileio::settings {

namespace {

constexpr std::string_view kSettingsOpenFailed = "Could not open settings file: ";

/// The maximum number of generated marks. No plate has so many wells and doses; without this limit, a file that claims
/// them would take memory in proportion to the product of two lists.
constexpr std::size_t kMostMadeMarks = 100'000;

/// The compound of a file, and the wells whose marks it has.
struct CChoice {
    std::int32_t compound;
    std::vector<std::int32_t> wellIDs;
};

template <class Section>
void SaveSection(CXmlFileArchive& archive, Section& section, const CChoice& choice) {
    if constexpr (std::is_same_v<Section, CPropRecordPlate>) {
        section.SaveShort(archive, choice.compound);
    } else if constexpr (std::is_same_v<Section, CPropAnalyzer>) {
        section.SaveWells(archive, choice.wellIDs);
    } else if constexpr (std::is_same_v<Section, CPropQualityCheck>) {
        section.Save(archive, false);
    } else {
        section.Save(archive);
    }
}

}  // namespace

std::string DoseWithoutText(std::size_t number, std::uint64_t dose) {
    return std::string(kRootElement).append("/").append(CSettingsForm::kElement) + "/" +
           std::string(CShortPlateForm::kElement) + "/Series[" + std::to_string(number) +
           "]/Dose: " + std::to_string(dose) + " pM is too large to be shown with a unit.";
}

void CSettingsReader::ReadFile(const std::string& path) {
    const auto load = [&](CXmlFileArchive& archive) {
        m_settings.Header.Load(archive);
        ForEachEventUntil(archive, CSettingsForm::kElement, [&] {
            if (GetField(archive, CSettingsForm::kFields, m_settings)) return;
            if (IsStartOf(archive, CXmlForm<CPropRecording>::kOlderElement))
                LoadChildren(archive, [&] { m_settings.Recording.Load(archive); });
        });
    };
    ReadDocument(path, kSettingsOpenFailed, CSettingsForm::kElement, m_readError, load);
    if (m_settings.Header.FileVersion < kFirstVersionWithMarks) MakeMarks();
}

/// Generates the marks that older files don't have: default ones for each dose with a text and each active well.
void CSettingsReader::MakeMarks() {
    const std::vector<std::int32_t> wells = m_settings.RecordPlate.GetActiveWellIDs();
    const std::size_t room = kMostMadeMarks / std::max<std::size_t>(wells.size(), 1);
    const std::size_t recordings = std::min(CountDoses(), room);
    m_settings.Analyzer.InitTask(enTask::Series, static_cast<std::int32_t>(recordings), wells);
}

/// Returns the number of doses. Reports the first one without a text and passes on the exception of `DoseToText`.
std::size_t CSettingsReader::CountDoses() {
    std::size_t count = 0;
    for (const std::uint64_t dose : m_settings.RecordPlate.Data.Series) {
        try {
            DoseToText(dose);
        } catch (const base::CExcConversion&) {
            m_readError += (m_readError.empty() ? "" : " ") + DoseWithoutText(count, dose) +
                           " The marks that this older file doesn't have weren't made.";
            throw;
        }
        ++count;
    }
    return count;
}

void CSettingsWriter::SetXmlFileHeader(const CXmlFileHeader& header) {
    m_settings.Header = header;
    m_settings.Header.FileType = kSettingsDocument.fileType;
}

void CSettingsWriter::WriteFile(const std::string& path, std::int32_t compound) {
    const CPropRecordPlate& plate = m_settings.RecordPlate;
    plate.RequireCompound(compound);  // before the file is touched
    const bool isFirst = compound == CPropRecordPlate::kFirstCompound;
    const CChoice choice{compound, isFirst ? plate.GetActiveWellIDs() : plate.GetActiveCompoundWellIDs(compound)};
    const auto save = [&](CXmlFileArchive& archive) {
        m_settings.Header.Save(archive);
        archive.OpenChild(CSettingsForm::kElement);
        ForEachField(CSettingsForm::kFields,
                     [&](const auto& field) { SaveSection(archive, m_settings.*field.member, choice); });
        archive.CloseElement();
    };
    WriteDocument(path, kSettingsOpenFailed, m_writeError, save);
}

}  // namespace vxfileio::settings
