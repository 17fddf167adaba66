#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// @file
/// Bulk access compared with `CIRawDataReader`, which reads the same file one segment at a time.

/// A sample and its time, which may exceed 64 bits in a damaged file.
struct CTimedSample {
    __extension__ __int128 time = 0;
    std::uint16_t sample = 0;

    bool operator==(const CTimedSample&) const = default;
};
using CTimedWells = std::map<std::int32_t, std::vector<CTimedSample>>;

/// Returns all samples of a selection with their times, as its runs place them. Runs must not have gaps between them.
inline CTimedWells TimedSamplesOf(const CSampleSelection& selection) {
    std::vector<std::vector<std::uint16_t>> buffers;
    for (const CWellSamples& well : selection.GetWells())
        buffers.emplace_back(well.Samples, std::uint16_t{0xABCD});
    selection.Read(std::vector<std::span<std::uint16_t>>(buffers.begin(), buffers.end()));
    CTimedWells wells;
    for (std::size_t i = 0; i < buffers.size(); ++i) {
        std::vector<CTimedSample>& samples = wells[selection.GetWells()[i].WellID];
        for (const CSampleRun& run : selection.GetWells()[i].Runs) {
            if (run.Offset != samples.size()) return {};
            for (std::uint64_t s = 0; s < run.Samples; ++s) {
                const auto time = static_cast<decltype(CTimedSample::time)>(run.TimeFrom) +
                                  static_cast<decltype(CTimedSample::time)>(s) * run.Interval;
                samples.push_back({time, buffers[i].at(run.Offset + s)});
            }
        }
    }
    std::erase_if(wells, [](const auto& well) { return well.second.empty(); });
    return wells;
}

/// Compares one file. Every function returns a difference, or an empty text.
class CReaderTwin {
 public:
    explicit CReaderTwin(std::string path) : m_path(std::move(path)) {}

    std::string Difference() {
        const std::string readers = FailureOf([&] { m_reader.Open(m_path); });
        const std::string own = FailureOf([&] { m_file.emplace(m_path); });
        if (readers != own) return "opening: " + own + " instead of " + readers;
        if (!m_file) return {};
        const auto& headers = m_file->GetRecordings();
        if (headers.size() != static_cast<std::size_t>(m_reader.GetIndex()->GetCount())) return "recordings";
        for (std::size_t i = 0; i < headers.size(); ++i) {
            const CIndexEntry& entry = *m_reader.GetIndex()->GetEntry(static_cast<std::int32_t>(i));
            if (entry.TaskName != headers[i].TaskName || entry.Recording != headers[i].Recording) return "an entry";
            const bool isReached = m_file->FindRecording(entry.TaskName, entry.Recording) == i;
            const std::string difference = isReached ? DifferenceIn(i) : std::string();
            if (!difference.empty()) return "recording " + std::to_string(i) + ": " + difference;
        }
        return {};
    }

 private:
    /// Stops after this many samples: segments that claim many beyond the end would only take time.
    static constexpr std::size_t kMostSamples = 1 << 20;

    template <class Operation>
    static std::string FailureOf(Operation operation) {
        try {
            operation();
            return {};
        } catch (const CExcVXReader& failure) {
            return failure.GetMsg();
        }
    }

    std::string DifferenceIn(std::size_t recording) {
        const CRawDataRecordingHdr& header = m_file->GetRecordings()[recording];
        const bool isFinished = m_reader.JumpToData(header.TaskName, header.Recording);
        const CIndexOptions options{.Unfinished = true, .UpToDamage = true};
        const std::string refusal = FailureOf([&] { static_cast<void>(m_file->ReadIndex(recording)); });
        const CRecordingIndex index = m_file->ReadIndex(recording, options);
        if (!isFinished) return refusal.empty() ? "an unfinished recording isn't refused" : DifferenceInWhole(index);
        if (refusal != index.GetDamage()) return "refused with: " + refusal;
        m_expected.clear();
        m_isRefused = false;
        m_isCut = false;
        const std::string difference = DifferenceInSegments(index);
        if (!difference.empty() || m_isCut) return difference;
        const std::string failure = FailureOf([&] { index.Select(); });
        if (failure.empty() == m_isRefused) return "a size that the reader refuses: " + failure;
        return m_isRefused ? std::string() : DifferenceInSamples(index);
    }

    /// Compares an unfinished recording, whose segments are one after the other in the file.
    static std::string DifferenceInWhole(const CRecordingIndex& index) {
        std::uint64_t samples = 0;
        std::int64_t end = 0;
        for (std::size_t number = 0; number < index.GetSegmentCount(); ++number) {
            const CSegmentInfo segment = index.GetSegment(number);
            if (segment.Offset < end) return "a segment within another";
            end = segment.Offset + 2 * std::int64_t{segment.Samples};
            samples += segment.Samples;
        }
        const CSampleSelection selection = index.Select();
        for (const CWellSamples& well : selection.GetWells())
            if (well.Missing > 0) return "missing samples";
        if (selection.GetSamples() != samples || index.GetCertainSamples() > samples) return "the number of samples";
        std::size_t read = 0;
        for (const auto& well : TimedSamplesOf(selection))
            read += well.second.size();
        return read == samples ? "" : "samples that can't be placed";
    }

    std::string DifferenceInSegments(const CRecordingIndex& index) {
        std::size_t sum = 0;
        for (std::size_t number = 0; !m_isCut; ++number) {
            CSegmentInfo own;
            if (number < index.GetSegmentCount()) own = index.GetSegment(number);
            std::uint16_t* samples = nullptr;
            CSegmentInfo readers = own;
            bool isThere = false;
            const std::string failure = FailureOf([&] {
                isThere =
                    m_reader.ReadSegment(readers.WellID, readers.TimeFrom, readers.TimeTo, readers.Samples, samples);
            });
            if (number == index.GetSegmentCount()) {
                const bool isSame = failure == index.GetDamage() || (number == 0 && index.GetDamage().empty());
                return isThere || !isSame ? "the end: " + failure + " after " + std::to_string(number) : std::string();
            }
            m_isRefused = m_isRefused || !failure.empty();
            if (!failure.empty()) continue;
            if (!isThere || own != readers) return "segment " + std::to_string(number);
            Expect(index, own, samples);
            m_isCut = (sum += own.Samples) > kMostSamples;
        }
        return {};
    }

    void Expect(const CRecordingIndex& index, const CSegmentInfo& segment, const std::uint16_t* samples) {
        CTimedSample timed{segment.TimeFrom, 0};
        for (std::uint32_t i = 0; i < segment.Samples; ++i, timed.time += IntervalOf(index, segment)) {
            timed.sample = samples[i];
            m_expected[segment.WellID].push_back(timed);
        }
    }

    static std::int64_t IntervalOf(const CRecordingIndex& index, const CSegmentInfo& segment) {
        for (const CRawDataChannelInfo& well : index.GetRecordingHdr().WellChannels) {
            if (well.ID != segment.WellID) continue;
            if (well.Ticks > 0) return well.Ticks;
            break;
        }
        const auto span = decltype(CTimedSample::time){segment.TimeTo} - segment.TimeFrom;
        const auto interval = segment.Samples > 1 && span <= INT64_MAX ? span / (segment.Samples - 1) : 1;
        return interval > 1 ? static_cast<std::int64_t>(interval) : 1;
    }

    /// Reads all wells, then each of the first few alone, also within a part of its time.
    std::string DifferenceInSamples(const CRecordingIndex& index) {
        if (TimedSamplesOf(index.Select()) != m_expected) return "the samples of all wells";
        int few = 4;
        for (const auto& [id, samples] : m_expected) {
            if (few-- == 0) break;
            CSampleRequest request{.WellIDs = {id}};
            if (TimedSamplesOf(index.Select(request)) != CTimedWells{{id, samples}}) return "the samples of one well";
            const auto first = samples[samples.size() / 3].time;
            const auto last = samples[samples.size() / 2].time;
            if (first < INT64_MIN || first > INT64_MAX || last < INT64_MIN || last >= INT64_MAX) continue;
            request.From = static_cast<std::int64_t>(first);
            request.To = static_cast<std::int64_t>(last);
            CTimedWells expected{{id, samples}};
            std::erase_if(expected[id], [&](const auto& sample) { return sample.time < first || sample.time > last; });
            if (expected[id].empty()) expected.clear();
            if (TimedSamplesOf(index.Select(request)) != expected) return "the samples of a part";
        }
        return {};
    }

    std::string m_path;
    CIRawDataReader m_reader;
    std::optional<CRawDataFile> m_file;
    CTimedWells m_expected;
    bool m_isRefused = false;  ///< A segment's size isn't credible.
    bool m_isCut = false;      ///< There were too many samples to compare.
};
