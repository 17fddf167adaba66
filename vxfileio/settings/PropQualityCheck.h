#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "vxfileio/base/Api.h"
#include "vxfileio/base/Enumerations.h"
#include "vxfileio/settings/VXProperty.h"

/// How the quality check of one task is run, and what passes. Doses are picomolar. The instrument defines the units of
/// waits and times and the meaning of the texts.
struct QualityCheckRecord {
    bool EnableQC = false;                                   ///< Whether the check is made.
    std::vector<std::int32_t> QCPerformed;                   ///< IDs of the compounds that it was made for.
    std::string TaskName;                                    ///< The task's word; its key, once read from a file.
    std::string CompoundName;                                ///< The compound of the check.
    std::uint64_t CompoundDose = 0;                          ///< Its dose.
    std::uint64_t CompoundStockDose = 0;                     ///< Its dose in the stock plate.
    char CompoundPlateID = 'C';                              ///< Its plate.
    std::int32_t CompoundPlateCol = 0;                       ///< Its column there.
    std::vector<std::uint64_t> Series = {0, 0, 0};           ///< The doses of the check.
    std::int64_t WashInWait = 0;                             ///< Wait after the wash-in.
    std::int64_t RecordingTime = 0;                          ///< Length of its recording.
    std::int64_t WashOutWait = 0;                            ///< Wait after the wash-out.
    std::int32_t WashOutCycles = 0;                          ///< The number of wash-outs.
    std::int32_t WashOutTroughID = 0;                        ///< Trough of the medium for it.
    bool ApplyQC = false;                                    ///< Whether the outcome counts.
    enResponseType QCResponse = enResponseType::NotDefined;  ///< The response that the check looks at.
    bool PerformCompoundQC = false;                          ///< Whether the compound's effect is checked.
    std::string CompoundQCEffect;                            ///< The effect that is expected.
    std::string CompoundQCComparison;                        ///< How it is compared.
    std::int32_t CompoundQCEffectValue = 0;                  ///< With what.
    bool PerformWashOutQC = false;                           ///< Whether the effect of the wash-out is checked.
    std::string WashOutQCEffect;                             ///< The effect that is expected.
    std::string WashOutQCComparison;                         ///< How it is compared.
    std::int32_t WashOutQCEffectValue = 0;                   ///< With what.
};

/// The quality checks of a run, one for each task that has one. A value with deep copies.
class VXFILEIO_API CPropQualityCheck : public CVXProperty {
 public:
    std::map<enTask, QualityCheckRecord> QualityChecks;  ///< The checks; any task can be a key.

    /// The base's operation, which writes nothing.
    using CVXProperty::Save;

    /// Reads on to the end tag of `PropertyQualityCheck`. The list in the file replaces all checks; the key of each is
    /// the task of its `TaskName`.
    void Load(CXmlFileArchive& archive) override;

    /// Writes the element `PropertyQualityCheck`; with `omitPerformed` as though each `QCPerformed` were empty. Keys
    /// aren't written.
    virtual void Save(CXmlFileArchive& archive, bool omitPerformed);
};
