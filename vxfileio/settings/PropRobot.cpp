#include "vxfileio/settings/PropRobot.h"

#include "vxfileio/helpers/DeepCopy.h"
#include "vxfileio/settings/forms/PropertyForms.h"

using vxfileio::helpers::DeepCopy;

CRobotGeometry::CRobotGeometry(const CRobotGeometry& other)
    : Range(DeepCopy(other.Range)),
      Dilutor(DeepCopy(other.Dilutor)),
      RecordPlate(DeepCopy(other.RecordPlate)),
      Cleaners(DeepCopy(other.Cleaners)),
      Wastes(DeepCopy(other.Wastes)),
      Troughs(DeepCopy(other.Troughs)),
      StockPlates(DeepCopy(other.StockPlates)) {}

CRobotGeometry& CRobotGeometry::operator=(const CRobotGeometry& other) { return *this = CRobotGeometry(other); }

void CPropRobot::Save(CXmlFileArchive& archive) { vxfileio::xmlarchive::SaveElement(archive, *this); }
void CPropRobot::Load(CXmlFileArchive& archive) { vxfileio::xmlarchive::LoadElement(archive, *this); }
