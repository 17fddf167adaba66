#include "vxfileio/frame/VXFileIO.h"

CVXFileIO::CVXFileIO() = default;
CVXFileIO::~CVXFileIO() = default;

CIRawDataWriter* CVXFileIO::GetRawDateWriter() { return &m_rawDataWriter; }
CIRawDataReader* CVXFileIO::GetRawDataReader() { return &m_rawDataReader; }
CIResultsWriter* CVXFileIO::GetResultsWriter() { return &m_resultsWriter; }
CIResultsReader* CVXFileIO::GetResultsReader() { return &m_resultsReader; }
CIResultsExport* CVXFileIO::GetResultsExport() { return &m_resultsExport; }
CISettingsWriter* CVXFileIO::GetSettingsWriter() { return &m_settingsWriter; }
CISettingsReader* CVXFileIO::GetSettingsReader() { return &m_settingsReader; }
