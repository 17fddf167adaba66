#include "vxfileio/frame/ISettingsReader.h"

CISettingsReader::CISettingsReader() = default;
CISettingsReader::~CISettingsReader() = default;
