#include <array>

#include "capi/Raw.h"
#include "vxfileio/base/EnumerationWords.h"

namespace vxfileio::capi {

CRawDataRecordingHdr TakeRecordingHdr(const vx_recording_header* header, const std::int32_t* wells,
                                      const std::int32_t* adZeros, const double* unitsPerAD,
                                      const std::int64_t* intervals, std::int64_t count) {
    const vx_recording_header taken = TakeStruct(header);
    const auto ids = TakeArray(wells, count);
    const auto zeros = TakeArray(adZeros, count);
    const auto units = TakeArray(unitsPerAD, count);
    const auto ticks = TakeArray(intervals, count);
    Require(taken.reserved == 0, "A reserved member isn't 0.");
    CRawDataRecordingHdr recording{.TaskName = TakeText(taken.task, "The task"),
                                   .Recording = taken.number,
                                   .Dose = taken.dose,
                                   .RecordingStartTime = taken.start_time,
                                   .RecordingTime = taken.recording_time};
    for (std::size_t i = 0; i < ids.size(); ++i)
        recording.WellChannels.push_back({ids[i], zeros[i], units[i], ticks[i]});
    return recording;
}

namespace {

/// The tasks whose lists a file header has, in the order of `vx_raw_list`.
constexpr std::array kListTasks = {enTask::PreQC, enTask::CompoundTest, enTask::PostQC};

class CWriter final : public COpened<CIRawDataWriter> {
 public:
    bool Finish() override {
        m_isFinished = true;
        CIRawDataWriter& writer = Get();
        writer.Close();
        return writer.GetWriteError().empty();
    }

    /// Throws if the disk doesn't have everything.
    void Flush() {
        if (m_isFinished) throw CFailed{VX_ERROR_REFUSED, "The file is finished; flush it before that."};
        if (!Get().FlushToDisk())
            throw CFailed{VX_ERROR_WRITE, "The disk doesn't have everything. " + Get().GetWriteError()};
    }

    /// Runs `write(writer)`. Throws with the report if there is something new in it.
    template <class Body>
    void Write(Body write) {
        CIRawDataWriter& writer = Get();
        write(writer);
        std::string report = writer.GetWriteError();
        if (report == m_report) return;
        m_report = report;
        throw CFailed{VX_ERROR_WRITE, std::move(report)};
    }

 private:
    std::string m_report;  ///< After the last call.
    bool m_isFinished = false;
};

std::string TextOrNothing(const char* text) { return text == nullptr ? std::string() : text; }

CRawDataFileHdr TakeFileHdr(const vx_file_header* header) {
    const vx_file_header taken = TakeStruct(header);
    CRawDataFileHdr file = MakeFileHdr({.FileType = TextOrNothing(taken.file_type),
                                        .ProgramVersion = TextOrNothing(taken.program_version),
                                        .Guid = TextOrNothing(taken.guid),
                                        .PlateID = TextOrNothing(taken.plate_id),
                                        .CompoundID = taken.compound_id,
                                        .CompoundName = TextOrNothing(taken.compound_name)});
    if (taken.header_id != nullptr) file.HeaderID = taken.header_id;
    if (taken.file_version != 0) file.FileVersion = taken.file_version;
    return file;
}

/// Runs `body(object)` with a writer; the library's refusals are those of a writer.
template <class Body>
int WithWriter(vx_writer* writer, Body body) noexcept {
    return With<CWriter>(writer, body, VX_ERROR_REFUSED);
}

/// Throws unless the samples are as many as the times say. (The rest is checked by the writer.)
void RequireCount(std::int64_t from, std::int64_t to, std::int64_t interval, std::size_t count) {
    if (interval <= 0 || to < from) return;
    const std::uint64_t span = static_cast<std::uint64_t>(to) - static_cast<std::uint64_t>(from);
    const std::uint64_t steps = span / static_cast<std::uint64_t>(interval);
    if (count == 0 || std::cmp_not_equal(count - 1, steps))
        throw CFailed{VX_ERROR_ARGUMENT, "The times are " + std::to_string(steps) +
                                             " intervals apart, so the count must be one more, not " +
                                             std::to_string(count) + "."};
}

}  // namespace

}  // namespace vxfileio::capi

using namespace vxfileio::capi;

int VX_CALL vx_writer_create(vx_writer** out, const char* path, int32_t mode) {
    return Make<CWriter>(out, [&](CWriter& object) {
        const std::string name = TakeText(path, "The path");
        Require(mode == VX_CREATE_NEW || mode == VX_CREATE_REPLACE, "The mode is unknown.");
        auto writer = std::make_unique<CIRawDataWriter>();
        mode == VX_CREATE_NEW ? writer->OpenNew(name) : writer->Open(name);
        object.Open(std::move(writer));
    });
}

int VX_CALL vx_writer_set_strict(vx_writer* writer, int32_t is_strict) {
    return WithWriter(writer, [&](CWriter& object) { object.Get().SetStrict(is_strict != 0); });
}

int VX_CALL vx_writer_write_file_header(vx_writer* writer, const vx_file_header* header) {
    return WithWriter(writer, [&](CWriter& object) {
        object.Write([&](CIRawDataWriter& file) { file.WriteFileHdr(TakeFileHdr(header)); });
    });
}

int VX_CALL vx_writer_begin_recording(vx_writer* writer, const vx_recording_header* header, const int32_t* wells,
                                      const int32_t* ad_zeros, const double* units_per_ad, const int64_t* intervals,
                                      int64_t count) {
    return WithWriter(writer, [&](CWriter& object) {
        const auto recording = TakeRecordingHdr(header, wells, ad_zeros, units_per_ad, intervals, count);
        object.Write([&](CIRawDataWriter& file) { file.WriteRecordingHdr(recording); });
    });
}

int VX_CALL vx_writer_write(vx_writer* writer, int32_t well, int64_t time_from, int64_t time_to, int64_t interval,
                            const uint16_t* samples, int64_t count) {
    return WithWriter(writer, [&](CWriter& object) {
        const auto taken = TakeArray(samples, count);
        RequireCount(time_from, time_to, interval, taken.size());
        object.Write([&](CIRawDataWriter& file) { file.WriteData(well, time_from, time_to, interval, taken.data()); });
    });
}

int VX_CALL vx_writer_set_list(vx_writer* writer, int32_t list, const int64_t* values, int64_t count) {
    return WithWriter(writer, [&](CWriter& object) {
        const std::string task(vxfileio::base::WordOf(kListTasks[TakeIndex(list, kListTasks.size())]));
        std::vector<std::string> texts;
        for (const std::int64_t value : TakeArray(values, count))
            texts.push_back(std::to_string(value));
        object.Write([&](CIRawDataWriter& file) { file.UpdateFileHdr(task, texts); });
    });
}

int VX_CALL vx_writer_flush_to_disk(vx_writer* writer) {
    return WithWriter(writer, [](CWriter& object) { object.Flush(); });
}

int VX_CALL vx_writer_finish(vx_writer* writer) {
    return WithWriter(writer, [&](CWriter& object) {
        if (!object.Finish()) throw CFailed{VX_ERROR_WRITE, object.Get().GetWriteError()};
    });
}

int VX_CALL vx_writer_get_report(vx_writer* writer, char* buffer, int64_t* size) {
    return WithWriter(writer, [&](CWriter& object) { PutText(object.Get().GetWriteError(), buffer, size); });
}
