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
/// The one header that callers include. It includes all public classes.

/// The entry point of the library: one object that owns the seven facades.
///
/// Creating it doesn't access any file. An accessor always returns the same pointer for the same object; the facade
/// belongs to the object and is destroyed with it, never by the caller. The destructor finishes a raw data file that is
/// still open, as `CIRawDataWriter::Close` does.
///
/// Use an object and everything that belongs to it from one thread at a time. Separate objects share no mutable state.
class VXFILEIO_API CVXFileIO {
 public:
    /// Creates the facades. Throws only `std::bad_alloc`.
    CVXFileIO();
    ~CVXFileIO();

    CVXFileIO(const CVXFileIO&) = delete;
    CVXFileIO& operator=(const CVXFileIO&) = delete;

    /// Returns the writer of raw data files. (The `Date` in its name is kept for existing callers.)
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
