#include "vxfileio/frame/ISettingsWriter.h"

CISettingsWriter::CISettingsWriter() = default;
CISettingsWriter::~CISettingsWriter() = default;
