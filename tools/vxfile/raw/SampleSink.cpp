#include "tools/vxfile/raw/SampleSink.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstring>
#include <functional>
#include <map>
#include <numeric>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vxfile/raw/DecimalScale.h"
#include "tools/vxfile/report/NpyFile.h"
#include "tools/vxfile/report/Table.h"
#include "tools/vxfile/system/Output.h"
#include "verify/Failure.h"

namespace vxfile {

namespace {

static_assert(std::endian::native == std::endian::little, "numbers go to the arrays straight from memory");

constexpr std::string_view kWellMark = "{well}";

double InUnits(std::uint16_t sample, const CRawDataChannelInfo& channel) {
    return (static_cast<double>(sample) - channel.ADZero) * channel.UnitsPerAD;
}

/// Returns the channel that converts the piece's samples to units. Throws `CFailure` if the header lacks the units.
const CRawDataChannelInfo& ChannelOf(const CPiece& piece) {
    if (piece.channel == nullptr)
        throw CFailure("The recording header has no well " + std::to_string(piece.well) +
                       ", so its unit isn't known; omit --units or choose other wells.");
    if (!piece.scaleFault.empty())
        throw CFailure(std::string(piece.scaleFault) +
                       ", so its unit isn't known; omit --units, choose other wells, or correct a copy of the file.");
    return *piece.channel;
}

// ---- Text -----------------------------------------------------------------------------------------------------------

/// A header line, and a line per sample.
class CTextTable : public CSampleSink {
 public:
    CTextTable(const CSampleForm& form, char separator)
        : m_units(form.units),
          m_separator(separator),
          m_output(form.target),
          m_labels(form.labels),
          m_ticksPerSecond(form.ticksPerSecond) {
        m_text.append("task,recording,well,").append(m_labels == nullptr ? "" : "label,dose,").append("time,");
        m_text.append(m_ticksPerSecond == 0 ? "" : "seconds,").append(m_units ? "value\n" : "sample\n");
        std::ranges::replace(m_text, ',', separator);
    }

    void Put(const CPiece& piece) override {
        if (m_units) m_scale = CDecimalScale(ChannelOf(piece));
        SetStart(piece);
        std::int64_t time = piece.time;
        for (const std::uint16_t sample : piece.samples) {
            AddLine(time, sample);
            time = piece.TimeAfter(time, 1);
            if (m_text.size() > kBlockSize) Flush();
        }
        Flush();
    }

    void Finish(std::vector<COutput*>& outputs) override {
        Flush();
        m_output.Finish();
        outputs.push_back(&m_output);
    }

 private:
    static constexpr std::size_t kBlockSize = std::size_t{64} << 10;

    void SetStart(const CPiece& piece) {
        m_start = DelimitedField(piece.recording->TaskName, m_separator) + m_separator +
                  std::to_string(piece.recording->Recording) + m_separator + std::to_string(piece.well) + m_separator;
        if (m_labels == nullptr) return;
        m_start += DelimitedField(std::string(m_labels->Of(piece.well)), m_separator) + m_separator +
                   std::to_string(piece.recording->Dose) + m_separator;
    }

    void AddLine(std::int64_t time, std::uint16_t sample) {
        m_text += m_start;
        AddNumber(time);
        m_text += m_separator;
        if (m_ticksPerSecond != 0) {
            AddNumber(static_cast<double>(time) / m_ticksPerSecond);
            m_text += m_separator;
        }
        if (m_units) {
            m_scale.AddTo(m_text, sample);
        } else {
            AddNumber(sample);
        }
        m_text += '\n';
    }

    void AddNumber(auto number) {
        m_text.append(m_number.data(), std::to_chars(m_number.data(), m_number.data() + m_number.size(), number).ptr);
    }

    void Flush() {
        m_output.Write(m_text);
        m_text.clear();
    }

    bool m_units;
    char m_separator;
    COutput m_output;
    const CPlateLabels* m_labels;
    double m_ticksPerSecond;
    CDecimalScale m_scale;
    std::string m_start;  ///< The start of each line of the piece.
    std::string m_text;
    std::array<char, 32> m_number{};  ///< Buffer for one number, kept to be cleared only once.
};

// ---- NPY ------------------------------------------------------------------------------------------------------------

[[noreturn]] void RefuseSecondWell() {
    throw CFailure(
        "There are several wells, but an array holds one. Choose it with --well, put {well} in the name of -o, or "
        "use --table.");
}

/// Returns the number of samples that will go to the target.
std::uint64_t CountAhead(const CSampleForm& form, CSampleSource& source) {
    const auto& counts = source.Counts();
    source.RefuseNothing();
    if (form.well) return counts.at(*form.well);
    if (form.kind == CSampleForm::EKind::NpyArray && counts.size() > 1) RefuseSecondWell();
    return std::accumulate(counts.begin(), counts.end(), std::uint64_t{0},
                           [](std::uint64_t sum, const auto& count) { return sum + count.second; });
}

/// An array of the samples of one well.
class CNpyArray : public CSampleSink {
 public:
    CNpyArray(const CSampleForm& form, CSampleSource& source)
        : m_units(form.units),
          m_file(form.target, form.units ? "'<f8'" : "'<u2'", [&] { return CountAhead(form, source); }) {}

    void Put(const CPiece& piece) override {
        if (piece.well != m_well.value_or(piece.well)) RefuseSecondWell();
        m_well = piece.well;
        const auto samples = piece.samples;
        if (!m_units) return m_file.Put(std::as_bytes(samples), samples.size());
        const CRawDataChannelInfo& channel = ChannelOf(piece);
        m_values.resize(samples.size());
        std::ranges::transform(samples, m_values.begin(), [&](auto sample) { return InUnits(sample, channel); });
        m_file.Put(std::as_bytes(std::span(m_values)), samples.size());
    }

    void Finish(std::vector<COutput*>& outputs) override { m_file.Finish(outputs); }

 private:
    bool m_units;
    CNpyFile m_file;
    std::optional<std::int32_t> m_well;
    std::vector<double> m_values;
};

/// A table of all wells, with the columns of the text formats.
class CNpyTable : public CSampleSink {
 public:
    CNpyTable(const CSampleForm& form, CSampleSource& source)
        : m_units(form.units),
          m_labels(form.labels),
          m_ticksPerSecond(form.ticksPerSecond),
          m_taskSize(std::max(source.LongestTask(), std::size_t{1})),
          m_labelSize(m_labels == nullptr ? 0 : std::max(m_labels->Longest(), std::size_t{1})),
          m_itemSize(m_taskSize + 2 * sizeof(std::int32_t) + sizeof(std::int64_t) +
                     (m_labels == nullptr ? 0 : m_labelSize + sizeof(std::int64_t)) +
                     (m_ticksPerSecond == 0 ? 0 : sizeof(double)) + (m_units ? sizeof(double) : sizeof(std::uint16_t))),
          m_block(kBlockItems * m_itemSize),
          m_file(form.target, Type(), [&] { return CountAhead(form, source); }) {}

    void Put(const CPiece& piece) override {
        const CRawDataChannelInfo* const channel = m_units ? &ChannelOf(piece) : nullptr;
        SetFront(piece);
        std::int64_t time = piece.time;
        for (auto samples = piece.samples; !samples.empty();) {
            const auto part = samples.first(std::min(samples.size(), kBlockItems));
            Fill(piece, channel, time, part);
            m_file.Put(std::span(m_block).first(part.size() * m_itemSize), part.size());
            samples = samples.subspan(part.size());
            time = piece.TimeAfter(time, part.size());
        }
    }

    void Finish(std::vector<COutput*>& outputs) override { m_file.Finish(outputs); }

 private:
    static constexpr std::size_t kBlockItems = 4096;

    void SetFront(const CPiece& piece) {
        m_front = piece.recording->TaskName;
        m_front.resize(m_taskSize);
        Append(m_front, piece.recording->Recording);
        Append(m_front, piece.well);
        if (m_labels == nullptr) return;
        m_front.append(m_labels->Of(piece.well)).append(m_labelSize - m_labels->Of(piece.well).size(), '\0');
        Append(m_front, piece.recording->Dose);
    }

    std::string Type() const {
        return "[('task','|S" + std::to_string(m_taskSize) + "'),('recording','<i4'),('well','<i4')," +
               (m_labels == nullptr ? "" : "('label','|S" + std::to_string(m_labelSize) + "'),('dose','<i8'),") +
               "('time','<i8')," + (m_ticksPerSecond == 0 ? "" : "('seconds','<f8'),") +
               (m_units ? "('value','<f8')]" : "('sample','<u2')]");
    }

    static void Append(std::string& bytes, const auto& number) {
        std::array<char, sizeof number> raw{};
        std::memcpy(raw.data(), &number, sizeof number);
        bytes.append(raw.data(), raw.size());
    }

    void Fill(const CPiece& piece, const CRawDataChannelInfo* channel, std::int64_t time,
              std::span<const std::uint16_t> samples) {
        std::byte* at = m_block.data();
        const auto add = [&at](const auto& number) {
            std::memcpy(at, &number, sizeof number);
            at += sizeof number;
        };
        for (const std::uint16_t sample : samples) {
            at = std::ranges::copy(std::as_bytes(std::span(m_front)), at).out;
            add(time);
            if (m_ticksPerSecond != 0) add(static_cast<double>(time) / m_ticksPerSecond);
            if (m_units) {
                add(InUnits(sample, *channel));
            } else {
                add(sample);
            }
            time = piece.TimeAfter(time, 1);
        }
    }

    bool m_units;
    const CPlateLabels* m_labels;
    double m_ticksPerSecond;
    std::size_t m_taskSize;
    std::size_t m_labelSize;
    std::size_t m_itemSize;
    std::vector<std::byte> m_block;
    CNpyFile m_file;
    std::string m_front;  ///< The start of each item of the piece: everything before the time.
};

// ---- A file per well ------------------------------------------------------------------------------------------------

std::unique_ptr<CSampleSink> MakeSink(const CSampleForm& form, CSampleSource& source) {
    using enum CSampleForm::EKind;
    switch (form.kind) {
        case NpyArray:
            return std::make_unique<CNpyArray>(form, source);
        case NpyTable:
            return std::make_unique<CNpyTable>(form, source);
        case Tsv:
            return std::make_unique<CTextTable>(form, '\t');
        case Csv:
            break;
    }
    return std::make_unique<CTextTable>(form, ',');
}

/// A sink for each well, with an output named after it.
class CSinkPerWell : public CSampleSink {
 public:
    CSinkPerWell(CSampleForm form, CSampleSource& source) : m_form(std::move(form)), m_source(source) {}

    void Put(const CPiece& piece) override {
        auto& sink = m_sinks[piece.well];
        if (m_sinks.size() > kMostSinks)
            throw CFailure("There are too many wells for one file each; choose some with --well.");
        if (!sink) sink = MakeSink(FormOf(piece.well), m_source);
        sink->Put(piece);
    }

    void Finish(std::vector<COutput*>& outputs) override {
        for (auto& sink : m_sinks)
            sink.second->Finish(outputs);
    }

 private:
    /// The number of files open at once. No plate has more wells.
    static constexpr std::size_t kMostSinks = 400;

    CSampleForm FormOf(std::int32_t well) const {
        CSampleForm form = m_form;
        form.well = well;
        const std::string number = std::to_string(well);
        std::string& path = form.target.path;
        for (auto at = path.find(kWellMark); at != std::string::npos; at = path.find(kWellMark))
            path.replace(at, kWellMark.size(), number);
        return form;
    }

    CSampleForm m_form;
    CSampleSource& m_source;
    std::map<std::int32_t, std::unique_ptr<CSampleSink>> m_sinks;
};

}  // namespace

void CSampleSink::Commit() {
    std::vector<COutput*> outputs;
    Finish(outputs);
    COutput::Commit(outputs);
}

std::unique_ptr<CSampleSink> MakeSampleSink(const CSampleForm& form, CSampleSource& source) {
    if (form.target.path.find(kWellMark) == std::string::npos) return MakeSink(form, source);
    return std::make_unique<CSinkPerWell>(form, source);
}

}  // namespace vxfile
