#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

#include "capi/Raw.h"
#include "vxfileio/access/Internals.h"
#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/rawdata/RawDataErrors.h"
#include "vxfileio/rawdata/RawDataReader.h"

namespace vxfileio::capi {

namespace {

/// Reads the segments of a recording, one after the other, from the file that a `CRawDataFile` has open.
class CSegments final : public CObject {
 public:
    bool IsOpen() const noexcept override { return m_reader != nullptr; }
    void Open(const CRawDataFile& file, std::int64_t recording, std::int32_t well);

    /// Returns the next segment, which stays the next one until `Pass`. Throws VX_END if there is none. After damage,
    /// throws the same exception each time.
    const vx_segment_info& Next();
    /// Returns its samples, which are valid until the next one is read.
    const std::uint16_t* Samples() const noexcept { return m_samples; }
    void Pass() noexcept { m_hasNext = false; }

 private:
    [[nodiscard]] bool Read();

    std::unique_ptr<rawdata::CRawDataReader> m_reader;
    vx_segment_info m_next{};
    std::uint16_t* m_samples = nullptr;  ///< Of the next segment; the reader's.
    std::optional<CExcVXReader> m_damage;
    bool m_hasNext = false;
    bool m_isEmpty = false;
};

void CSegments::Open(const CRawDataFile& file, std::int64_t recording, std::int32_t well) {
    const std::size_t index = TakeIndex(recording, file.GetRecordings().size());
    auto reader = std::make_unique<rawdata::CRawDataReader>(access::CInternals::ReaderOf(file), index);
    if (!reader->JumpToRecording(0)) throw CFailed{VX_ERROR_FILE, rawdata::kUnfinished};
    reader->SelectWellID(well);
    m_isEmpty = reader->IsWithoutSegments(0);
    m_reader = std::move(reader);
}

const vx_segment_info& CSegments::Next() {
    if (m_damage) throw CExcVXReader(*m_damage);
    if (!m_hasNext && !Read()) throw CFailed{VX_END, "There are no more segments."};
    m_hasNext = true;
    return m_next;
}

/// Reads the next segment. Returns false after the last one.
bool CSegments::Read() {
    std::uint32_t size = 0;
    try {
        if (m_isEmpty || !m_reader->ReadSegment(m_next.well, m_next.time_from, m_next.time_to, size, m_samples))
            return false;
    } catch (const CExcVXReader& damage) {
        m_damage = damage;
        throw;
    }
    m_next.samples = size;
    m_next.offset = m_reader->SamplesOffset();
    return true;
}

class CRaw final : public COpened<CRawDataFile> {};
class CRecording final : public COpened<CRecordingIndex> {};
class CSelection final : public COpened<CSampleSelection> {};

constexpr std::array kTexts = {&CRawDataFileHdr::HeaderID, &CRawDataFileHdr::FileType, &CRawDataFileHdr::ProgramVersion,
                               &CRawDataFileHdr::Guid,     &CRawDataFileHdr::PlateID,  &CRawDataFileHdr::CompoundName};
constexpr std::array kLists = {&CRawDataFileHdr::PreQC, &CRawDataFileHdr::CompoundTest, &CRawDataFileHdr::PostQC};

const CRawDataRecordingHdr& RecordingAt(CRaw& raw, std::int64_t index) {
    const auto& recordings = raw.Get().GetRecordings();
    return recordings[TakeIndex(index, recordings.size())];
}

vx_recording_info InfoOf(const CRawDataRecordingHdr& header) {
    vx_recording_info info{};
    info.dose = header.Dose;
    info.recording_time = header.RecordingTime;
    info.start_time = header.RecordingStartTime;
    info.wells = static_cast<std::int64_t>(header.WellChannels.size());
    info.number = header.Recording;
    info.is_finished = header.FPosRecordingData >= 0 ? 1 : 0;
    return info;
}

CIndexOptions TakeOptions(const vx_recording_options* options) {
    if (options == nullptr) return {};
    const vx_recording_options taken = TakeStruct(options);
    return {.Unfinished = taken.unfinished != 0, .UpToDamage = taken.up_to_damage != 0};
}

const CRawDataChannelInfo& ChannelOf(CRecording& recording, std::int32_t well) {
    for (const auto& channel : recording.Get().GetWells()) {
        if (channel.ID == well) return channel;
    }
    throw CFailed{VX_ERROR_NOT_FOUND, "The recording has no well " + std::to_string(well) + "."};
}

CSegmentInfo SegmentAt(CRecording& recording, std::int64_t number) {
    const CRecordingIndex& index = recording.Get();
    return index.GetSegment(TakeIndex(number, index.GetSegmentCount()));
}

const CWellSamples& SelectedAt(CSelection& selection, std::int64_t index) {
    const auto& wells = selection.Get().GetWells();
    return wells[TakeIndex(index, wells.size())];
}

/// Reads all samples of a selection into one array, one well after the other. An array of doubles gets scaled values.
template <class Element>
void ReadAll(const CSampleSelection& selection, Element* elements, std::int64_t* count) {
    FillArray(elements, count, selection.GetSamples(), [&](std::span<Element> room) {
        std::vector<std::span<Element>> buffers;
        for (const CWellSamples& well : selection.GetWells()) {
            buffers.push_back(room.first(static_cast<std::size_t>(well.Samples)));
            room = room.subspan(buffers.back().size());
        }
        if constexpr (std::is_same_v<Element, double>) {
            selection.ReadScaled(buffers);
        } else {
            selection.Read(buffers);
        }
    });
}

/// Does the same with the samples of one well of a recording.
template <class Element>
void ReadWell(CRecording& recording, const CSampleRequest& request, Element* elements, std::int64_t* count) {
    static_cast<void>(ChannelOf(recording, request.WellIDs.front()));
    ReadAll(recording.Get().Select(request), elements, count);
}

}  // namespace

}  // namespace vxfileio::capi

using namespace vxfileio::capi;

int VX_CALL vx_raw_open(vx_raw** out, const char* path) {
    return Make<CRaw>(out, [&](CRaw& raw) { raw.Open(std::make_unique<CRawDataFile>(TakeText(path, "The path"))); });
}

int VX_CALL vx_raw_get_info(vx_raw* raw, vx_raw_info* info) {
    return With<CRaw>(raw, [&](CRaw& object) {
        const CRawDataFile& file = object.Get();
        vx_raw_info values{};
        values.recordings = static_cast<std::int64_t>(file.GetRecordings().size());
        values.file_version = file.GetFileHdr().FileVersion;
        values.compound_id = file.GetFileHdr().CompoundID;
        PutStruct(values, info);
    });
}

int VX_CALL vx_raw_get_text(vx_raw* raw, int32_t text, char* buffer, int64_t* size) {
    return With<CRaw>(raw, [&](CRaw& object) {
        PutText(object.Get().GetFileHdr().*kTexts[TakeIndex(text, kTexts.size())], buffer, size);
    });
}

int VX_CALL vx_raw_get_list(vx_raw* raw, int32_t list, int64_t* values, int64_t* count) {
    return With<CRaw>(raw, [&](CRaw& object) {
        PutArray(object.Get().GetFileHdr().*kLists[TakeIndex(list, kLists.size())], values, count);
    });
}

int VX_CALL vx_raw_get_recording(vx_raw* raw, int64_t index, vx_recording_info* info) {
    return With<CRaw>(raw, [&](CRaw& object) { PutStruct(InfoOf(RecordingAt(object, index)), info); });
}

int VX_CALL vx_raw_get_task(vx_raw* raw, int64_t index, char* buffer, int64_t* size) {
    return With<CRaw>(raw, [&](CRaw& object) { PutText(RecordingAt(object, index).TaskName, buffer, size); });
}

int VX_CALL vx_raw_find_recording(vx_raw* raw, const char* task, int32_t number, int64_t* index) {
    return With<CRaw>(raw, [&](CRaw& object) {
        const std::string name = TakeText(task, "The task");
        const auto found = object.Get().FindRecording(name, number);
        if (!found)
            throw CFailed{VX_ERROR_NOT_FOUND,
                          "The file has no recording " + std::to_string(number) + " of the task \"" + name + "\"."};
        Put(index, static_cast<std::int64_t>(*found));
    });
}

int VX_CALL vx_recording_open(vx_recording** out, vx_raw* raw, int64_t index, const vx_recording_options* options) {
    return Make<CRecording>(out, [&](CRecording& recording) {
        Use<CRaw>(raw, [&](CRaw& object) {
            const CRawDataFile& file = object.Get();
            const std::size_t number = TakeIndex(index, file.GetRecordings().size());
            recording.Open(std::make_unique<CRecordingIndex>(file.ReadIndex(number, TakeOptions(options))));
        });
    });
}

int VX_CALL vx_recording_get_state(vx_recording* recording, vx_recording_state* state) {
    return With<CRecording>(recording, [&](CRecording& object) {
        const CRecordingIndex& index = object.Get();
        vx_recording_state values{};
        values.segments = static_cast<std::int64_t>(index.GetSegmentCount());
        values.wells = static_cast<std::int64_t>(index.GetWells().size());
        values.certain_samples = static_cast<std::int64_t>(index.GetCertainSamples());
        PutStruct(values, state);
    });
}

int VX_CALL vx_recording_get_damage(vx_recording* recording, char* buffer, int64_t* size) {
    return With<CRecording>(recording, [&](CRecording& object) { PutText(object.Get().GetDamage(), buffer, size); });
}

int VX_CALL vx_recording_get_wells(vx_recording* recording, int32_t* wells, int64_t* count) {
    return With<CRecording>(recording, [&](CRecording& object) {
        const auto& channels = object.Get().GetWells();
        FillArray(wells, count, channels.size(), [&](std::span<std::int32_t> ids) {
            std::transform(channels.begin(), channels.end(), ids.begin(),
                           [](const auto& channel) { return channel.ID; });
        });
    });
}

int VX_CALL vx_recording_get_well(vx_recording* recording, int32_t well, vx_well_info* info) {
    return With<CRecording>(recording, [&](CRecording& object) {
        const CRawDataChannelInfo& channel = ChannelOf(object, well);
        vx_well_info values{};
        values.units_per_ad = channel.UnitsPerAD;
        values.interval = channel.Ticks;
        values.well = channel.ID;
        values.ad_zero = channel.ADZero;
        PutStruct(values, info);
    });
}

int VX_CALL vx_recording_get_segment(vx_recording* recording, int64_t number, vx_segment_info* info) {
    return With<CRecording>(recording, [&](CRecording& object) {
        const CSegmentInfo segment = SegmentAt(object, number);
        vx_segment_info values{};
        values.samples = segment.Samples;
        values.time_from = segment.TimeFrom;
        values.time_to = segment.TimeTo;
        values.offset = segment.Offset;
        values.well = segment.WellID;
        PutStruct(values, info);
    });
}

int VX_CALL vx_recording_read_segment(vx_recording* recording, int64_t number, uint16_t* samples, int64_t* count) {
    return With<CRecording>(recording, [&](CRecording& object) {
        FillArray(samples, count, SegmentAt(object, number).Samples, [&](std::span<std::uint16_t> room) {
            object.Get().ReadSegment(static_cast<std::size_t>(number), room);
        });
    });
}

int VX_CALL vx_recording_read(vx_recording* recording, int32_t well, int64_t from, int64_t to, uint16_t* samples,
                              int64_t* count) {
    return With<CRecording>(recording, [&](CRecording& object) {
        ReadWell(object, {{well}, from, to}, samples, count);
    });
}

int VX_CALL vx_recording_read_scaled(vx_recording* recording, int32_t well, int64_t from, int64_t to, double* values,
                                     int64_t* count) {
    return With<CRecording>(recording, [&](CRecording& object) {
        ReadWell(object, {{well}, from, to}, values, count);
    });
}

int VX_CALL vx_recording_select(vx_selection** out, vx_recording* recording, const int32_t* wells, int64_t well_count,
                                int64_t from, int64_t to) {
    return Make<CSelection>(out, [&](CSelection& selection) {
        Use<CRecording>(recording, [&](CRecording& object) {
            const auto ids = TakeArray(wells, well_count);
            for (const std::int32_t id : ids)
                static_cast<void>(ChannelOf(object, id));
            const CSampleRequest request{{ids.begin(), ids.end()}, from, to};
            selection.Open(std::make_unique<CSampleSelection>(object.Get().Select(request)));
        });
    });
}

int VX_CALL vx_selection_get_well_count(vx_selection* selection, int64_t* count) {
    return With<CSelection>(
        selection, [&](CSelection& object) { Put(count, static_cast<std::int64_t>(object.Get().GetWells().size())); });
}

int VX_CALL vx_selection_get_well(vx_selection* selection, int64_t index, vx_selected_well* well) {
    return With<CSelection>(selection, [&](CSelection& object) {
        const CWellSamples& selected = SelectedAt(object, index);
        vx_selected_well values{};
        for (const CWellSamples* before = object.Get().GetWells().data(); before != &selected; ++before)
            values.first += static_cast<std::int64_t>(before->Samples);
        values.samples = static_cast<std::int64_t>(selected.Samples);
        values.missing = static_cast<std::int64_t>(selected.Missing);
        values.runs = static_cast<std::int64_t>(selected.Runs.size());
        values.well = selected.WellID;
        PutStruct(values, well);
    });
}

int VX_CALL vx_selection_get_runs(vx_selection* selection, int64_t index, vx_run* runs, int64_t* count) {
    return With<CSelection>(selection, [&](CSelection& object) {
        const auto& found = SelectedAt(object, index).Runs;
        FillArray(runs, count, found.size(), [&](std::span<vx_run> room) {
            std::transform(found.begin(), found.end(), room.begin(), [](const CSampleRun& run) {
                return vx_run{run.TimeFrom, run.Interval, static_cast<std::int64_t>(run.Samples),
                              static_cast<std::int64_t>(run.Offset)};
            });
        });
    });
}

int VX_CALL vx_selection_read(vx_selection* selection, uint16_t* samples, int64_t* count) {
    return With<CSelection>(selection, [&](CSelection& object) { ReadAll(object.Get(), samples, count); });
}

int VX_CALL vx_selection_read_scaled(vx_selection* selection, double* values, int64_t* count) {
    return With<CSelection>(selection, [&](CSelection& object) { ReadAll(object.Get(), values, count); });
}

int VX_CALL vx_segments_open(vx_segments** out, vx_raw* raw, int64_t index, int32_t only_well) {
    return Make<CSegments>(out, [&](CSegments& segments) {
        Use<CRaw>(raw, [&](CRaw& object) { segments.Open(object.Get(), index, only_well); });
    });
}

int VX_CALL vx_segments_next(vx_segments* segments, vx_segment_info* info, uint16_t* samples, int64_t* count) {
    return With<CSegments>(segments, [&](CSegments& object) {
        static_cast<void>(SharedSizeOf(info));
        const vx_segment_info& next = object.Next();
        FillArray(samples, count, static_cast<std::uint64_t>(next.samples), [&](std::span<std::uint16_t> room) {
            std::copy_n(object.Samples(), room.size(), room.data());  // pointers: much faster than a loop
        });
        PutStruct(next, info);
        if (samples != nullptr) object.Pass();
    });
}
