#pragma once

#include <memory>

#include "vxfileio/settings/PropRecordPlate.h"
#include "vxfileio/settings/WellIndex.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::settings {

using namespace xmlarchive;

/// A list of values in which only the entries count; unknown elements are skipped.
template <class Object, class Entry>
struct CSoughtValuesField : CListField<Object, Entry> {
    using CListField<Object, Entry>::CListField;

    void Get(CXmlFileArchive& archive, Object& object) const {
        auto& values = object.*(this->member);
        values.assign(archive.GetListSize(), Entry{});
        if (values.empty() || !HasChildren(archive)) return;  // such a list is self-closed and has no end tag
        std::size_t found = 0;
        while (found < values.size() && archive.NextElement()) {
            if (IsStartOf(archive, this->entry.tag)) archive.GetValue(values[found++]);
        }
        archive.NextElement();  // the end tag
    }
};
template <class Object, class Entry>
CSoughtValuesField(std::string_view, std::string_view, std::vector<Entry> Object::*)
    -> CSoughtValuesField<Object, Entry>;

/// A list of owned objects, which replaces the former one. Null pointers are skipped.
template <class Object, class Entry>
struct COwnedListField {
    using CObject = Object;
    using CEntryForm = CXmlForm<Entry>;
    std::string_view tag;
    std::vector<std::unique_ptr<Entry>> Object::*member;

    constexpr CXmlElement Element() const noexcept { return ElementOfList<CEntryForm>(tag); }
    const auto& Value(const Object& object) const noexcept { return object.*member; }
    void Put(CXmlFileArchive& archive, const Object& object) const {
        std::vector<const Entry*> entries;
        for (const auto& entry : object.*member) {
            if (entry) entries.push_back(entry.get());
        }
        PutList(archive, entries, [&](const Entry* entry) { SaveEntry(archive, *entry); });
    }
    void Get(CXmlFileArchive& archive, Object& object) const {
        auto& entries = object.*member;
        entries.clear();
        GetEntries<Entry>(archive, [&](Entry entry) { entries.push_back(std::make_unique<Entry>(std::move(entry))); });
    }
};
template <class Object, class Entry>
COwnedListField(std::string_view, std::vector<std::unique_ptr<Entry>> Object::*) -> COwnedListField<Object, Entry>;

/// The wells of the long form. An inactive well becomes active again when it is read.
struct CPlateWellsField : COwnedListField<PlateRecords, PlateWell> {
    void Get(CXmlFileArchive& archive, PlateRecords& records) const {
        COwnedListField::Get(archive, records);
        for (const auto& well : records.Wells) {
            if (well->State == PlateWell::kInactive) well->State = PlateWell::kActive;
        }
    }
};

/// The layout, which the plate map follows.
struct CLayoutField {
    using CObject = CPropRecordPlate;
    std::string_view tag = "Layout";

    constexpr CXmlElement Element() const noexcept { return ElementOfValue<enPlateLayout>(tag); }
    const enPlateLayout& Value(const CPropRecordPlate& plate) const noexcept { return plate.Data.Layout; }
    void Put(CXmlFileArchive& archive, const CPropRecordPlate& plate) const { PutPlain(archive, plate.Data.Layout); }
    void Get(CXmlFileArchive& archive, CPropRecordPlate& plate) const {
        GetPlain(archive, plate.Data.Layout);
        plate.BuildPlateMap(plate.Data.Layout);
    }
};

}  // namespace vxfileio::settings

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<PlateCompound> {
    static constexpr std::string_view kElement = "Compound";
    static constexpr auto kFields = std::tuple{
        CValueField{"CompoundID", &PlateCompound::CompoundID},
        CTextField{"Label", &PlateCompound::Label},
        CValueField{"StockPlateID", &PlateCompound::StockPlateID},
        CValueField{"StockPlateRow", &PlateCompound::StockPlateRow},
        settings::CSoughtValuesField{"Wells", "WellID", &PlateCompound::Wells},
    };
};

template <>
struct CXmlForm<PlateWell> {
    static constexpr std::string_view kElement = "Well";
    static constexpr auto kFields = std::tuple{
        CValueField{"WellID", &PlateWell::WellID},     CValueField{"ChID", &PlateWell::ChID},
        CValueField{"Label", &PlateWell::Label},       CValueField{"PlateColumn", &PlateWell::PlateColumn},
        CValueField{"PlateRow", &PlateWell::PlateRow}, CValueField{"State", &PlateWell::State},
    };
};

/// What both forms of a plate begin with.
inline constexpr auto kPlateHead = std::tuple_cat(
    std::tuple{settings::CLayoutField{}},
    FieldsOfPart(&CPropRecordPlate::Data,  //
                 CValueField{"PlateID", &PlateData::PlateID}, CValueField{"PlateRows", &PlateData::PlateRows},
                 CValueField{"PlateColumns", &PlateData::PlateColumns}));

/// The long form of a plate.
template <>
struct CXmlForm<CPropRecordPlate> {
    static constexpr std::string_view kElement = "PropertyRecordPlate";
    static constexpr auto kFields =
        std::tuple_cat(kPlateHead, FieldsOfPart(&CPropRecordPlate::Data,  //
                                                settings::COwnedListField{"Compounds", &PlateRecords::Compounds},
                                                settings::CPlateWellsField{{"Wells", &PlateRecords::Wells}},
                                                CValuesField{"Series", "Dose", &PlateData::Series},
                                                CValueField{"MaxVolume", &PlateData::MaxVolume},
                                                CValueField{"MinWellsPerCompound", &PlateData::MinWellsPerCompound},
                                                CValueField{"MixVolume", &PlateData::MixVolume},
                                                CValueField{"PipetMode", &PlateData::PipetMode},
                                                CValueField{"StdVolume", &PlateData::StdVolume}));
};

}  // namespace vxfileio::xmlarchive

namespace vxfileio::settings {

/// One compound to be written, and the wells of its plate.
struct CCompoundToSave {
    const PlateCompound& compound;
    CWellIndex wells;
};

/// One compound to be read, and the plate that its wells are added to.
struct CCompoundToLoad {
    PlateCompound& compound;
    PlateData& plate;
    CWellIndex wells{plate};
};

/// The wells of a compound with their records. A well without a record is written as a default one with its ID.
struct CCompoundWellsField {
    using CEntryForm = CXmlForm<PlateWell>;
    std::string_view tag = "Wells";

    constexpr CXmlElement Element() const noexcept { return ElementOfList<CEntryForm>(tag); }
    void Put(CXmlFileArchive& archive, const CCompoundToSave& source) const {
        PutList(archive, source.compound.Wells, [&](std::int32_t wellID) {
            const PlateWell* const well = source.wells.Find(wellID);
            SaveElement(archive, well == nullptr ? PlateWell{wellID} : *well);
        });
    }
    void Get(CXmlFileArchive& archive, CCompoundToLoad& target) const {
        target.compound.Wells.clear();
        GetEntries<PlateWell>(archive, [&](const PlateWell& well) {
            target.plate.AddWell(well.WellID, well.PlateRow, well.PlateColumn, well.ChID, well.Label);
            target.wells.Add(*target.plate.Wells.back()).State = well.State;
            target.compound.Wells.push_back(well.WellID);
        });
    }
};

/// The short form of a plate: one compound and its wells. Its objects are the plate, the compound, and a
/// `CCompoundToSave` or `CCompoundToLoad`.
struct CShortPlateForm {
    static constexpr std::string_view kElement = CXmlForm<CPropRecordPlate>::kElement;
    static constexpr auto kFields =
        std::tuple_cat(kPlateHead,
                       std::tuple{
                           CValueField{"CompoundID", &PlateCompound::CompoundID},
                           CValueField{"Label", &PlateCompound::Label},
                           CCompoundWellsField{},
                       },
                       FieldsOfPart(&CPropRecordPlate::Data, CValueField{"PipetMode", &PlateData::PipetMode},
                                    CValuesField{"Series", "Dose", &PlateData::Series}));
};

}  // namespace vxfileio::settings
