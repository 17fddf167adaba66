#include "verify/raw/RemarkText.h"

#include "verify/Text.h"
#include "vxfileio/rawdata/Layout.h"

namespace vxfile {

using namespace vxfileio::recovery;

namespace {

/// Returns the keys of the cells that a remark is about.
std::string KeysOf(const CRemark& remark) {
    std::string keys;
    for (std::size_t row = 0; remark.form != nullptr && row < remark.form->cells.size(); ++row) {
        if (remark.cells[row]) keys.append(keys.empty() ? "" : ", ").append(remark.form->cells[row].key);
    }
    return keys;
}

std::string CutText(const CRemark& remark) {
    const std::string text = "the segment was cut: " + std::to_string(remark.missing) + " of its " +
                             std::to_string(remark.count) + " samples are not in the file";
    if (remark.reason == EReason::CutKept) return text + ", those before are kept";
    return text + (remark.should != 0 ? " (--cut keeps the others)" : "");
}

std::string MissingText(const CRemark& remark) {
    const bool isSegment = remark.reason == EReason::MissingSegment;
    return std::string("the file ends, but ") +
           (isSegment ? "FPosNextSegmentHdr of the segment before" : "the position of the next recording") +
           " points to byte " + std::to_string(remark.value) + ": at least one " +
           (isSegment ? "segment" : "recording") + " is gone";
}

std::string DamagedText(const CRemark& remark) {
    const char* const means = remark.lost.none()   ? ", but legible"
                              : remark.should != 0 ? ", whose values are lost"
                                                   : ", restored from the others";
    return "damaged cells: " + KeysOf(remark) + means;
}

std::string SharedText(const CRemark& remark) {
    return "this well has two segments of the same times (" + Counted(remark.count, "case") + ")" +
           (remark.value >= 0 ? ", while well " + std::to_string(remark.value) + " has none then" : "") +
           "; an ID may be damaged";
}

std::string LossText(const CRemark& remark) {
    switch (remark.reason) {
        case EReason::BeforeFile:
            return "they precede the file";
        case EReason::EndsInHeader:
            return "the file ends within a header";
        case EReason::EndsInRubbish:
            return "no whole header follows";
        case EReason::LostRecording:
            return "the recording header is damaged or lost";
        case EReason::DamagedSegment:
            return "damaged cells: " + KeysOf(remark);
        case EReason::Contradiction:
            return "the cells of the segment header contradict one another";
        case EReason::TakenOutOf:
            return "bytes were removed from it: the next header begins within it";
        case EReason::TakenOutOfHeader:
            return "bytes were removed from the recording header";
        case EReason::Cut:
        case EReason::CutKept:
            return CutText(remark);
        case EReason::MissingSegment:
        case EReason::MissingRecording:
            return MissingText(remark);
        case EReason::NotReached:
            return "no position points there";
        case EReason::OtherInterval:
            return "its times don't fit the interval of its well, " + std::to_string(remark.value) +
                   ": the well ID or a time is damaged";
        default:
            break;
    }
    const bool hasRoom =
        remark.to - remark.from >= static_cast<std::int64_t>(vxfileio::rawdata::Layouts().back().recording.size);
    return std::string("no conclusive header") + (hasRoom ? "; a recording header may be among these bytes" : "");
}

std::string DoubtText(const CRemark& remark) {
    switch (remark.reason) {
        case EReason::DamagedCells:
            return DamagedText(remark);
        case EReason::Position:
            return remark.what + " is " + std::to_string(remark.value) + ", but should be " +
                   std::to_string(remark.should) + ": it is damaged, or bytes were inserted, removed or copied";
        case EReason::PutIn:
            return "bytes were inserted after it or within it: its samples may be wrong from there on";
        case EReason::TakenOut:
            return "bytes were removed after it or within it: its samples may be wrong from there on";
        case EReason::Unconfirmed:
            return "nothing confirms where it ends: its last samples may be wrong";
        case EReason::PutIntoHeader:
            return "bytes were inserted into its header; what follows it is whole";
        case EReason::TakenFromHeader:
            return "bytes were removed from its header; what follows it is whole";
        case EReason::OtherHeader:
            return "bytes were removed before it or within its header: " +
                   std::string(remark.wellID ? "it may be of another well"
                                             : "its first cells may be of another recording");
        case EReason::MaybeEmpty:
            return "the file ends after the header of this recording: if it had segments, they are gone";
        case EReason::Ambiguous:
            return "what lies here may be something else: two explanations are nearly equally good";
        case EReason::OtherRecording:
            return "a recording header may be lost before it, whole or in part: it and the segments after it may be of "
                   "another recording";
        case EReason::OtherWell:
            return std::string(remark.wellID ? "the segment names this well, but" : "the ID of the segment is lost;") +
                   " by its times it is one of well " + std::to_string(remark.value) + ", where it is kept";
        case EReason::Unlisted:
            return "the recording doesn't list this well, which has " + Counted(remark.count, "segment") +
                   "; an ID may be damaged";
        case EReason::SharedTimes:
            return SharedText(remark);
        case EReason::LostPages:
            return "zeros that begin with a page of 4096 bytes: a power cut leaves these in place of samples that "
                   "never "
                   "reached the disk";
        case EReason::MadeTime:
            return remark.what + " doesn't fit the interval; it was computed from the well's other segments";
        default:
            return {};
    }
}

}  // namespace

std::string TextOf(const CRemark& remark) {
    const std::string doubt = DoubtText(remark);
    return doubt.empty() ? LossText(remark) : doubt;
}

std::string TextOf(const CNote& note, const std::string& header) {
    const std::string said = note.from > 0 ? "; the header said " + std::to_string(note.from) : "";
    const bool isOne = note.wells.size() == 1;
    const std::string wells = (isOne ? "well " : "wells ") + ListText(note.wells);
    switch (note.kind) {
        case CNote::EKind::Lost:
            return "lost from " + header + ": " + note.keys;
        case CNote::EKind::Restored:
            return "damaged in " + header + ", but restored from the rest of the file: " + note.keys;
        case CNote::EKind::Legible:
            return "damaged in " + header + ", but legible: " + note.keys;
        case CNote::EKind::Odd:
            return "with a separator in " + header + ", damaged or from another program: " + note.keys;
        case CNote::EKind::MadeUp:
            return "its header is lost and was rebuilt; UnitsPerAD and ADZero of its wells are 0";
        case CNote::EKind::WellsOfSegments:
            return "the wells are those of its segments";
        case CNote::EKind::ListedTwice:
            return wells + (isOne ? " was" : " were") + " listed twice";
        case CNote::EKind::ListedNow:
            return (isOne ? "listed now, as it has segments: " : "listed now, as they have segments: ") + wells;
        case CNote::EKind::Interval:
            return "the interval of " + wells + " is " + std::to_string(note.to) + ", computed from its segments" +
                   said;
        case CNote::EKind::NoInterval:
            return "the interval of " + wells + " isn't known" + said;
        case CNote::EKind::NoAuxChannels:
            return "auxiliary channels are left out: their cells don't agree";
        case CNote::EKind::TooManyWells:
            return "not all of its wells fit into the header";
        case CNote::EKind::NewVersion:
            return "the file is of version " + std::to_string(note.to) + " now" +
                   (note.keys.empty() ? ""
                                      : "; cells added to its recording headers, with their defaults: " + note.keys);
    }
    return {};
}

}  // namespace vxfile
