#pragma once

#include "vxfileio/access/RawDataFile.h"
#include "vxfileio/access/RecordingIndex.h"
#include "vxfileio/access/SampleSelection.h"
#include "vxfileio/base/Api.h"
#include "vxfileio/base/Enumerations.h"
#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/base/FileExtensions.h"
#include "vxfileio/frame/IRawDataReader.h"
#include "vxfileio/frame/IRawDataWriter.h"
#include "vxfileio/frame/IResultsExport.h"
#include "vxfileio/frame/IResultsReader.h"
#include "vxfileio/frame/IResultsWriter.h"
#include "vxfileio/frame/ISettingsReader.h"
#include "vxfileio/frame/ISettingsWriter.h"
#include "vxfileio/rawdata/RawDataHeaders.h"
#include "vxfileio/rawdata/RecordingFit.h"
#include "vxfileio/results/Response.h"
#include "vxfileio/results/ResponseMean.h"
#include "vxfileio/results/Results.h"
#include "vxfileio/results/ResultsRecording.h"
#include "vxfileio/results/ResultsTask.h"
#include "vxfileio/results/ResultsWell.h"
#include "vxfileio/settings/PropAnalyzer.h"
#include "vxfileio/settings/PropControl.h"
#include "vxfileio/settings/PropNotebook.h"
#include "vxfileio/settings/PropQualityCheck.h"
#include "vxfileio/settings/PropRecordPlate.h"
#include "vxfileio/settings/PropRecording.h"
#include "vxfileio/settings/PropResultsExport.h"
#include "vxfileio/settings/PropRobot.h"
#include "vxfileio/settings/PropViability.h"
#include "vxfileio/settings/PropWashIn.h"
#include "vxfileio/settings/VXProperty.h"
#include "vxfileio/settings/XmlFileHeader.h"
#include "vxfileio/xmlarchive/FileBuffer.h"
#include "vxfileio/xmlarchive/XmlArchive.h"
#include "vxfileio/xmlarchive/XmlState.h"
#include "vxfileio/xmlarchive/XmlValue.h"

/// @file
/// The one header that a caller includes. Every public class comes with it.

/// The library's front door: one object that owns the seven facades.
///
/// Making one touches no file. An accessor always returns the same pointer for the same object; its facade
/// belongs to this object, lives as long, and is never freed by the caller. Destroying the object takes the facades
/// down in reverse order, so a raw data file that is still open is finished as by `CIRawDataWriter::Close`.
///
/// One object, with all that hangs from it, serves one thread at a time. Separate objects share nothing that changes.
class VXFILEIO_API CVXFileIO {
 public:
    /// Builds the facades. Throws what an allocation throws.
    CVXFileIO();
    ~CVXFileIO();

    CVXFileIO(const CVXFileIO&) = delete;
    CVXFileIO& operator=(const CVXFileIO&) = delete;

    /// Returns the writer of raw data files. (The `Date` in its name is how callers know it.)
    CIRawDataWriter* GetRawDateWriter();
    /// Returns the reader of raw data files.
    CIRawDataReader* GetRawDataReader();
    /// Returns the writer of results files.
    CIResultsWriter* GetResultsWriter();
    /// Returns the reader of results files.
    CIResultsReader* GetResultsReader();
    /// Returns the export of results to workbooks.
    CIResultsExport* GetResultsExport();
    /// Returns the writer of settings files.
    CISettingsWriter* GetSettingsWriter();
    /// Returns the reader of settings files.
    CISettingsReader* GetSettingsReader();

 private:
    CIRawDataWriter m_rawDataWriter;
    CIRawDataReader m_rawDataReader;
    CIResultsWriter m_resultsWriter;
    CIResultsReader m_resultsReader;
    CIResultsExport m_resultsExport;
    CISettingsWriter m_settingsWriter;
    CISettingsReader m_settingsReader;
};
