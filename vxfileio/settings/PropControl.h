#pragma once

#include <string>

#include "vxfileio/base/Api.h"
#include "vxfileio/base/Enumerations.h"
#include "vxfileio/settings/VXProperty.h"

/// Overrides the operations of the base so that they neither save nor load a `CPropControl`.
class VXFILEIO_API CPropControlSlots : public CVXProperty {
 public:
    void Save(CXmlFileArchive& archive) final;  ///< Writes nothing.
    void Load(CXmlFileArchive& archive) final;  ///< Reads nothing.
};

// Hiding the two operations above is what this class is for.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"
#endif

/// How the system is driven. Only its own two operations save and load; those of the base `CVXProperty` do nothing. A
/// value with deep copies.
class VXFILEIO_API CPropControl : public CPropControlSlots {
 public:
    enVexaprobeMode VexaprobeMode = enVexaprobeMode::NotDefined;  ///< The kind of instrument.
    enAcqMode RobotMode = enAcqMode::NotDefined;                  ///< How the robot is driven.
    enAcqMode DataAcqMode = enAcqMode::NotDefined;                ///< How the data acquisition is driven.
    std::string SimulationDataFile;                               ///< The file that simulated data come from.

    /// Writes the element `PropertyControl`. (A plain function would override that of the base, through which nothing
    /// must be stored; a template can't.)
    template <class File>
    void Save(gd_xml_stream::CXMLArchive<File>& archive) const;

    /// Reads on to the end tag of `PropertyControl`.
    template <class File>
    void Load(gd_xml_stream::CXMLArchive<File>& archive);
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

extern template VXFILEIO_API void CPropControl::Save(CXmlFileArchive& archive) const;
extern template VXFILEIO_API void CPropControl::Load(CXmlFileArchive& archive);
