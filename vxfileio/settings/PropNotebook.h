#pragma once

#include <cstdint>
#include <string>

#include "vxfileio/base/Api.h"
#include "vxfileio/settings/VXProperty.h"

/// The notebook of an experiment: who did what with what, in free text. A value with deep copies.
class VXFILEIO_API CPropNotebook : public CVXProperty {
 public:
    std::uint64_t Reserved = 0;   ///< The caller's own; no file holds it.
    std::string ExperimentID;     ///< Identifier of the experiment.
    std::string FileName;         ///< Name of the run's files.
    std::string Director;         ///< Who is responsible.
    std::string Scientist;        ///< Who planned the run.
    std::string Operator;         ///< Who carried it out.
    std::string Department;       ///< Their department.
    std::string Company;          ///< Their company.
    std::string StudyDesignator;  ///< The study that the run belongs to.
    std::string Species;          ///< Where the cells come from.
    std::string Age;              ///< How old they are.
    std::string Comment;          ///< Anything else.

    /// Writes the element `PropertyNotebook`.
    void Save(CXmlFileArchive& archive) override;

    /// Reads on to the end tag of `PropertyNotebook`.
    void Load(CXmlFileArchive& archive) override;
};
