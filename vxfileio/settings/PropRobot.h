#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "vxfileio/base/Api.h"
#include "vxfileio/settings/VXProperty.h"

/// A plate on the robot's deck.
struct CRobotPlate {
    char ID = ' ';                          ///< Its identifier.
    std::array<std::int32_t, 12> Values{};  ///< Its geometry.
};

/// The geometry of the robot's deck. The library only copies it, deeply; no file holds it.
struct VXFILEIO_API CRobotGeometry {
    CRobotGeometry() = default;
    /// @{
    /// Copies are deep.
    CRobotGeometry(const CRobotGeometry& other);
    CRobotGeometry(CRobotGeometry&&) = default;
    CRobotGeometry& operator=(const CRobotGeometry& other);
    CRobotGeometry& operator=(CRobotGeometry&&) = default;
    /// @}
    ~CRobotGeometry() = default;

    std::unique_ptr<std::array<std::int32_t, 6>> Range;                  ///< Where the robot reaches.
    std::unique_ptr<std::array<std::int32_t, 5>> Dilutor;                ///< The dilutor.
    std::unique_ptr<CRobotPlate> RecordPlate;                            ///< The record plate.
    std::vector<std::unique_ptr<std::array<std::int32_t, 4>>> Cleaners;  ///< The cleaners.
    std::vector<std::unique_ptr<std::array<std::int32_t, 4>>> Wastes;    ///< The wastes.
    std::vector<std::unique_ptr<std::array<std::int32_t, 7>>> Troughs;   ///< The troughs.
    std::vector<std::unique_ptr<CRobotPlate>> StockPlates;               ///< The stock plates.
};

/// How the robot is set up: its deck, where it is reached, and what its positions serve for; -1 is none.
struct CRobotConfig : CRobotGeometry {
    std::vector<std::string> TroughMediumNames;  ///< The medium in each trough.
    std::string IPAddress;                       ///< The robot's network endpoint.
    std::int32_t CleanerID = -1;                 ///< Position of the cleaner.
    std::int32_t WasteID = -1;                   ///< Position of the waste.
    std::int32_t TroughIDStockDilution = -1;     ///< Trough of the medium that stock is diluted with.
    std::int32_t TroughIDWellMedium = -1;        ///< Trough of the medium of the wells.
    char StockPlateIDL8x12 = ' ';                ///< Stock plate for the layout "8x12".
    char StockPlateIDL16x6 = ' ';                ///< Stock plate for the layout "16x6".
};

/// The pipetting robot of an experiment. A value with deep copies.
class VXFILEIO_API CPropRobot : public CVXProperty {
 public:
    CRobotConfig RobotConfig;                    ///< How it is set up.
    std::string FirmwareVersion = "not read";    ///< Version of its firmware.
    std::string FirmwareDate = "not read";       ///< Date of its firmware.
    std::string RobotSerialNumber = "not read";  ///< Its serial number.

    /// Writes the element `PropertyRobot`, without the geometry.
    void Save(CXmlFileArchive& archive) override;

    /// Reads on to the end tag of `PropertyRobot`. The geometry stays as it was.
    void Load(CXmlFileArchive& archive) override;
};
