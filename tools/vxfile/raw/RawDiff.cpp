#include "tools/vxfile/raw/RawDiff.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vxfile/report/Progress.h"
#include "tools/vxfile/report/Text.h"
#include "verify/Failure.h"
#include "verify/raw/Coverage.h"
#include "verify/raw/RawScan.h"
#include "vxfileio/rawdata/CellCodec.h"
#include "vxfileio/rawdata/RawDataFormat.h"

using namespace vxfileio::rawdata;

namespace vxfile {

namespace {

constexpr std::size_t kBlockSize = std::size_t{1} << 20;

/// A damaged `Size` makes segments overlap. The bytes of a file are compared up to this many times over, so that the
/// time stays linear in its size.
constexpr std::int64_t kMostPasses = 4;

/// The most differing segments listed per recording.
constexpr int kMostSegmentsTold = 5;

void AddCells(const auto& cells, const std::string& name, std::string_view bytes, std::vector<CLeaf>& leaves) {
    std::string_view block;  // recording headers have these keys twice: for wells and for auxiliary channels
    for (const auto& cell : cells) {
        const std::string_view text = CellText(CellIn(cell, bytes));
        if (cell.key == "NumberOfAuxCh") block = "auxiliary ";
        // Positions depend on the layout of the file, not on its content.
        if (cell.traits.role == ERole::Value)
            leaves.push_back({name + " > " + std::string(block) + std::string(cell.key.empty() ? "mark" : cell.key),
                              Quoted(text.substr(std::min(text.size(), cell.key.size())))});
    }
}

std::vector<CLeaf> HeaderLeaves(const CRawScan& scan, const CPlateChoice& choice) {
    std::vector<CLeaf> leaves;
    const CLayout& layout = scan.Layout();
    AddCells(layout.file.cells, "file header", scan.ReadBytes(0, layout.file.size), leaves);
    for (std::size_t i = 0; i < scan.Recordings().size(); ++i) {
        const CRecordingAt& recording = scan.Recordings()[i];
        if (!choice.HasRecording(recording.header)) continue;
        const std::string name = "recording " + std::to_string(i + 1);
        AddCells(layout.recording.cells, name, scan.ReadBytes(recording.position, layout.recording.size), leaves);
        leaves.push_back({name + " > state", recording.IsFinished() ? "finished" : "not finished"});
    }
    return leaves;
}

std::string SegmentText(const CSegmentAt& segment, const CPlateView& view) {
    const auto& header = segment.header;
    return "well " + std::to_string(header.ID) + ", from " + view.TimesText(header.TimeFrom, header.TimeTo) + ", " +
           Counted(segment.Samples(), "sample");
}

/// One of the two files.
struct CSide {
    explicit CSide(const std::string& file) : path(file), scan(file), budget(scan) {}

    std::string path;
    CRawScan scan;
    CSegmentBudget budget;
    CCoverage reached = {};  ///< The bytes that positions lead to.
    std::vector<std::byte> block = {};
};

void Reach(CSide& side, std::int64_t begin, std::int64_t end) {
    side.reached.Add({begin, std::min(end, side.scan.Size())});
}

/// Returns the ranges that no position leads to.
std::vector<CRange> Unreached(CSide& side) {
    Reach(side, 0, side.scan.FileHdrSize());
    for (const auto& recording : side.scan.Recordings())
        Reach(side, recording.position, side.scan.DataPosition(recording));
    std::vector<CRange> gaps;
    side.reached.Inspect(
        side.scan.Size(), [&](CRange gap) { gaps.push_back(gap); }, [](CRange /*overlap*/) {});
    return gaps;
}

std::int64_t BytesOf(const std::vector<CRange>& ranges) {
    return std::accumulate(ranges.begin(), ranges.end(), std::int64_t{0},
                           [](std::int64_t sum, CRange range) { return sum + range.end - range.begin; });
}

/// Reads a part of a file; less at the end of the file.
std::span<const std::byte> Read(CSide& side, std::int64_t position, std::size_t size) {
    side.block.resize(std::max(side.block.size(), size));
    const std::span<std::byte> block(side.block);
    return block.first(side.scan.File().ReadUpTo(position, block.first(size)));
}

class CRawDiff {
 public:
    CRawDiff(const std::string& left, const std::string& right, CDifferences& differences, const CPlateView& view)
        : m_view(view),
          m_left(left),
          m_right(right),
          m_differences(differences),
          m_bytesLeft(kMostPasses * m_left.scan.Size()),
          m_progress("Comparing", m_left.scan.Size()) {}

    void Compare() {
        const CPlateChoice& choice = m_view.choice;
        CompareLeaves(HeaderLeaves(m_left.scan, choice), HeaderLeaves(m_right.scan, choice), m_differences);
        const std::size_t count = std::min(m_left.scan.Recordings().size(), m_right.scan.Recordings().size());
        for (std::size_t i = 0; i < count; ++i) {
            if (choice.HasRecording(m_left.scan.Recordings()[i].header)) CompareSegments(i);
        }
        m_told = 0;
        CompareBreaks("recordings", "", m_left.scan.Break().has_value(), m_right.scan.Break().has_value());
        // Bytes that no position leads to may be anything, so they must be identical.
        if (m_differences.Count() == 0 && choice.IsAll() && IsRestTheSame()) return;
        if (!m_omission.empty()) m_differences.Omit(m_omission);
    }

 private:
    void CompareSegments(std::size_t index) {
        CSegmentWalk lefts = AllSegmentsOf(m_left.scan, m_left.scan.Recordings()[index]);
        CSegmentWalk rights = AllSegmentsOf(m_right.scan, m_right.scan.Recordings()[index]);
        const std::string name = NameOf(m_left.scan.Recordings()[index], index);
        m_told = 0;
        for (std::size_t number = 1; m_told < kMostSegmentsTold; ++number) {
            const CSegmentAt* const left = NextChosen(m_left, lefts);
            const CSegmentAt* const right = NextChosen(m_right, rights);
            const std::string where = name + " > segment " + std::to_string(number);
            if (left == nullptr || right == nullptr) {
                if (left != right)
                    Tell({where, left == nullptr ? "" : SegmentText(*left, m_view),
                          right == nullptr ? "" : SegmentText(*right, m_view)});
                break;
            }
            m_progress.Reach(left->position);
            CompareSegment(where, *left, *right);
        }
        CompareBreaks("segments", name, lefts.Break().has_value(), rights.Break().has_value());
    }

    /// Tells if only one of two chains is damaged. `where` is the recording; empty for the chain of recordings.
    void CompareBreaks(const std::string& chained, const std::string& where, bool isLeftBroken, bool isRightBroken) {
        const std::string chain = "chain of " + chained;
        if (isLeftBroken != isRightBroken)
            Tell({where.empty() ? chain : where + " > " + chain, isLeftBroken ? "damaged" : "whole",
                  isRightBroken ? "damaged" : "whole"});
        if (!m_omission.empty() || (!isLeftBroken && !isRightBroken)) return;
        m_omission = (isLeftBroken ? m_left : m_right).path + " has a damaged " + chain +
                     (where.empty() ? "" : " in " + where) +
                     ", so what follows there wasn't compared; run 'vxfile verify' to see where.";
    }

    /// Moves to the next segment of a chosen well; null after the last one.
    const CSegmentAt* NextChosen(CSide& side, CSegmentWalk& walk) const {
        while (const CSegmentAt* const segment = walk.Next()) {
            if (!side.budget.Take()) RefuseTangle();
            if (m_view.choice.HasWell(segment->header.ID)) return segment;
        }
        return nullptr;
    }

    void CompareSegment(const std::string& where, const CSegmentAt& left, const CSegmentAt& right) {
        Reach(m_left, left.position, left.End());
        Reach(m_right, right.position, right.End());
        const std::string leftText = SegmentText(left, m_view);
        const std::string rightText = SegmentText(right, m_view);
        if (leftText != rightText) return Tell({where, leftText, rightText});
        CompareBytes(left.DataPosition(), right.DataPosition(), std::int64_t{left.Samples()} * 2,
                     [&](std::int64_t done, std::span<const std::byte> a, std::span<const std::byte> b) {
                         TellSample(std::string(where).append(", ").append(leftText), done, a, b);
                     });
    }

    /// Calls `tell(done, left, right)` for the first block that differs, `done` bytes after the positions.
    void CompareBytes(std::int64_t left, std::int64_t right, std::int64_t size, auto tell) {
        for (std::int64_t done = 0; done < size; done += kBlockSize) {
            const auto part = static_cast<std::size_t>(std::min<std::int64_t>(size - done, kBlockSize));
            const auto a = Read(m_left, left + done, part);
            m_bytesLeft -= static_cast<std::int64_t>(a.size());
            if (m_bytesLeft < 0) RefuseTangle();
            const auto b = Read(m_right, right + done, part);
            if (!std::ranges::equal(a, b)) return tell(done, a, b);
            if (a.size() < part) return;  // both files end here
        }
    }

    /// Returns whether the bytes that no position leads to are the same in both files.
    bool IsRestTheSame() {
        const auto lefts = Unreached(m_left);
        const auto rights = Unreached(m_right);
        const auto size = [](CRange range) { return range.end - range.begin; };
        bool same = std::ranges::equal(lefts, rights, {}, size, size);
        for (std::size_t i = 0; same && i < lefts.size(); ++i)
            CompareBytes(lefts[i].begin, rights[i].begin, size(lefts[i]), [&](auto...) { same = false; });
        if (!same && m_omission.empty())
            m_omission = "Bytes that no position leads to weren't compared: " + std::to_string(BytesOf(lefts)) +
                         " in " + m_left.path + ", " + std::to_string(BytesOf(rights)) + " in " + m_right.path +
                         "; run 'vxfile recover' to look for segments in them.";
        return same;
    }

    [[noreturn]] static void RefuseTangle() {
        throw CFailure("Segments share bytes or chains; run 'vxfile verify' to see where.");
    }

    void TellSample(const std::string& where, std::int64_t done, std::span<const std::byte> left,
                    std::span<const std::byte> right) {
        const auto at = static_cast<std::size_t>(std::ranges::mismatch(left, right).in1 - left.begin()) / 2;
        const auto sample = [at](std::span<const std::byte> bytes) {
            if (2 * at + 1 >= bytes.size()) return std::string("the end of the file");
            return std::to_string(std::to_integer<unsigned>(bytes[2 * at]) |
                                  std::to_integer<unsigned>(bytes[2 * at + 1]) << 8U);
        };
        Tell({where + " > sample " + std::to_string(done / 2 + static_cast<std::int64_t>(at)), sample(left),
              sample(right)});
    }

    void Tell(CDifference difference) {
        if (++m_told == kMostSegmentsTold) difference.where += " (and maybe more in this recording)";
        m_differences.Add(std::move(difference));
    }

    const CPlateView& m_view;
    CSide m_left;
    CSide m_right;
    CDifferences& m_differences;
    std::int64_t m_bytesLeft;  ///< The number of bytes to compare before giving up on overlapping segments.
    CProgress m_progress;
    int m_told = 0;
    std::string m_omission;  ///< The first content that can't be compared.
};

}  // namespace

void CompareRawData(const std::string& left, const std::string& right, CDifferences& differences,
                    const CPlateView& view) {
    CRawDiff(left, right, differences, view).Compare();
}

}  // namespace vxfile
