#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "tools/vxfile/diff/Differences.h"
#include "tools/vxfile/io/Failure.h"
#include "tools/vxfile/io/Progress.h"
#include "tools/vxfile/io/Text.h"
#include "tools/vxfile/raw/RawScan.h"
#include "vxfileio/rawdata/CellCodec.h"
#include "vxfileio/rawdata/RawDataFormat.h"

using namespace vxfileio::rawdata;

namespace vxfile {

namespace {

constexpr std::size_t kBlockSize = std::size_t{1} << 20;

/// So many segments of one recording are told; behind them only that there are more.
constexpr int kMostSegmentsTold = 5;

/// Positions tell where something stands and not what it is, so they aren't compared.
bool IsPosition(std::string_view key) { return key.starts_with("FPos"); }

void AddCells(const auto& cells, std::int32_t version, const std::string& name, std::string_view bytes,
              std::vector<CLeaf>& leaves) {
    std::string_view block;  // keys stand twice in recording headers: for wells and for auxiliary channels
    for (const auto& cell : cells) {
        if (!HasCell(cell, version)) continue;
        const std::string_view text = CellText(bytes.substr(0, cell.width));
        bytes.remove_prefix(std::min(cell.width, bytes.size()));
        if (cell.key == "NumberOfAuxCh") block = "auxiliary ";
        if (!IsPosition(cell.key))
            leaves.push_back({name + " > " + std::string(block) + std::string(cell.key.empty() ? "mark" : cell.key),
                              Quoted(text.substr(std::min(text.size(), cell.key.size())))});
    }
}

std::vector<CLeaf> HeaderLeaves(const CRawScan& scan) {
    std::vector<CLeaf> leaves;
    AddCells(kFileCells, kNewestVersion, "file header", scan.ReadBytes(0, kFileHdrSize), leaves);
    const auto size = static_cast<std::size_t>(scan.RecordingHdrSize());
    for (std::size_t i = 0; i < scan.Recordings().size(); ++i) {
        const CRecordingAt& recording = scan.Recordings()[i];
        const std::string name = "recording " + std::to_string(i + 1);
        AddCells(kRecordingCells, scan.Header().FileVersion, name, scan.ReadBytes(recording.position, size), leaves);
        leaves.push_back(
            {name + " > state", recording.header.FPosRecordingData == kUnset ? "not finished" : "finished"});
    }
    return leaves;
}

std::string SegmentText(const CSegmentAt& segment) {
    const auto& header = segment.header;
    return "well " + std::to_string(header.ID) + ", from " + std::to_string(header.TimeFrom) + " to " +
           std::to_string(header.TimeTo) + ", " + Counted(segment.Samples(), "sample");
}

class CRawDiff {
 public:
    CRawDiff(const std::string& left, const std::string& right, CDifferences& differences)
        : m_left(left),
          m_right(right),
          m_differences(differences),
          m_budget(m_left),
          m_progress("Comparing", m_left.Size()) {
        for (const auto* scan : {&m_left, &m_right}) {
            if (scan->Break())
                throw CFailure((scan == &m_left ? left : right) +
                               " has a damaged chain of recordings; vxfile verify tells where.");
        }
    }

    void Compare() {
        CompareLeaves(HeaderLeaves(m_left), HeaderLeaves(m_right), m_differences);
        const std::size_t count = std::min(m_left.Recordings().size(), m_right.Recordings().size());
        for (std::size_t i = 0; i < count; ++i)
            CompareSegments(i);
    }

 private:
    void CompareSegments(std::size_t index) {
        CSegmentWalk lefts = Walk(m_left, index);
        CSegmentWalk rights = Walk(m_right, index);
        m_told = 0;
        for (std::size_t number = 1; m_told < kMostSegmentsTold; ++number) {
            const CSegmentAt* const left = lefts.Next();
            const CSegmentAt* const right = rights.Next();
            const std::string where =
                NameOf(m_left.Recordings()[index], index) + " > segment " + std::to_string(number);
            if (left == nullptr || right == nullptr) {
                if (left != right)
                    Tell({where, left == nullptr ? "" : SegmentText(*left),
                          right == nullptr ? "" : SegmentText(*right)});
                break;
            }
            if (!m_budget.Take()) throw CFailure("Chains of segments are tangled; vxfile verify tells where.");
            m_progress.Reach(left->position);
            CompareSegment(where, *left, *right);
        }
        if (lefts.Break().has_value() != rights.Break().has_value())
            Tell({NameOf(m_left.Recordings()[index], index) + " > chain of segments",
                  lefts.Break() ? "damaged" : "whole", rights.Break() ? "damaged" : "whole"});
    }

    static CSegmentWalk Walk(const CRawScan& scan, std::size_t index) {
        const CRecordingAt& recording = scan.Recordings()[index];
        const bool finished = recording.header.FPosRecordingData != kUnset;
        return finished ? SegmentsOf(scan, recording) : SegmentsBehind(scan, recording);
    }

    void CompareSegment(const std::string& where, const CSegmentAt& left, const CSegmentAt& right) {
        const std::string leftText = SegmentText(left);
        const std::string rightText = SegmentText(right);
        if (leftText != rightText) return Tell({where, leftText, rightText});
        const std::int64_t size = std::int64_t{left.Samples()} * 2;
        for (std::int64_t done = 0; done < size; done += kBlockSize) {
            const auto part = static_cast<std::size_t>(std::min<std::int64_t>(size - done, kBlockSize));
            const std::size_t leftRead = m_left.File().ReadUpTo(left.DataPosition() + done, Block(m_leftBlock, part));
            const std::size_t rightRead =
                m_right.File().ReadUpTo(right.DataPosition() + done, Block(m_rightBlock, part));
            const auto a = std::span(m_leftBlock).first(leftRead);
            const auto b = std::span(m_rightBlock).first(rightRead);
            if (!std::ranges::equal(a, b))
                return TellSample(std::string(where).append(", ").append(leftText), done, a, b);
            if (leftRead < part) return;  // both files end here
        }
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

    static std::span<std::byte> Block(std::vector<std::byte>& block, std::size_t size) {
        block.resize(std::max(block.size(), size));
        return std::span(block).first(size);
    }

    CRawScan m_left;
    CRawScan m_right;
    CDifferences& m_differences;
    CSegmentBudget m_budget;
    CProgress m_progress;
    std::vector<std::byte> m_leftBlock;
    std::vector<std::byte> m_rightBlock;
    int m_told = 0;
};

}  // namespace

void CompareRawData(const std::string& left, const std::string& right, CDifferences& differences) {
    CRawDiff(left, right, differences).Compare();
}

}  // namespace vxfile
