#include "tools/vxfile/samples/SampleSink.h"

#include <array>
#include <bit>
#include <charconv>
#include <map>
#include <vector>

#include "tools/vxfile/io/Failure.h"
#include "tools/vxfile/io/Output.h"

namespace vxfile {

namespace {

static_assert(std::endian::native == std::endian::little, "numbers go to the arrays straight from memory");

/// Files that are open at once; more wells than this are no plate's.
constexpr std::size_t kMostArrays = 400;

constexpr std::string_view kWellMark = "{well}";

double InUnits(std::uint16_t sample, const CRawDataChannelInfo& channel) {
    return (static_cast<double>(sample) - channel.ADZero) * channel.UnitsPerAD;
}

/// Returns what turns the piece's samples into units.
const CRawDataChannelInfo& ChannelOf(const CPiece& piece) {
    if (piece.channel == nullptr)
        throw CFailure("The recording header has no well " + std::to_string(piece.well) +
                       ", so its unit isn't known; leave out --units or choose other wells.");
    return *piece.channel;
}

// ---- Text -----------------------------------------------------------------------------------------------------------

/// A line per sample, behind a line of names.
class CTextTable : public CSampleSink {
 public:
    CTextTable(const CSampleForm& form, char separator)
        : m_units(form.units), m_separator(separator), m_output(form.target, form.source) {
        std::string names = "task,recording,well,time,";
        names += m_units ? "value\n" : "sample\n";
        for (char& c : names)
            c = c == ',' ? separator : c;
        m_output.Write(names);
    }

    void Put(const CPiece& piece, std::int64_t time, std::span<const std::uint16_t> samples) override {
        const CRawDataChannelInfo channel = m_units ? ChannelOf(piece) : CRawDataChannelInfo();
        const std::string start = Field(piece.recording->TaskName) + m_separator +
                                  std::to_string(piece.recording->Recording) + m_separator +
                                  std::to_string(piece.well) + m_separator;
        for (const std::uint16_t sample : samples) {
            m_text += start;
            AddNumber(time);
            m_text += m_separator;
            if (m_units) {
                AddNumber(InUnits(sample, channel));
            } else {
                AddNumber(sample);
            }
            m_text += '\n';
            time = piece.TimeBehind(time, 1);
            if (m_text.size() > kBlockSize) Flush();
        }
        Flush();
    }

    void Commit() override { m_output.Commit(); }

 private:
    static constexpr std::size_t kBlockSize = std::size_t{64} << 10;

    /// In quotation marks if it would be taken for more than one field otherwise.
    std::string Field(const std::string& text) const {
        if (text.find_first_of(std::string("\"\r\n") + m_separator) == std::string::npos) return text;
        std::string quoted = "\"";
        for (const char c : text)
            quoted.append(c == '"' ? 2 : 1, c);
        return quoted + '"';
    }

    void AddNumber(auto number) {
        std::array<char, 32> room{};
        m_text.append(room.data(), std::to_chars(room.data(), room.data() + room.size(), number).ptr);
    }

    void Flush() {
        m_output.Write(m_text);
        m_text.clear();
    }

    bool m_units;
    char m_separator;
    COutput m_output;
    std::string m_text;
};

// ---- NPY ------------------------------------------------------------------------------------------------------------

/// One array in a file of its own. Its length stands ahead of it.
class CNpyFile {
 public:
    /// `type` is a description of numpy, and `count` tells how many items will come.
    CNpyFile(const std::string& target, const std::string& source, const std::string& type, std::uint64_t count)
        : m_output(target, source) {
        constexpr std::size_t kHeaderSize = 192;  // a multiple of 64, so that the items are aligned
        constexpr std::string_view kMagic("\x93NUMPY\x01\x00", 8);
        std::string header(kMagic);
        header += static_cast<char>(kHeaderSize - kMagic.size() - 2);
        header += '\0';
        header += "{'descr': " + type + ", 'fortran_order': False, 'shape': (" + std::to_string(count) + ",), }";
        header.resize(kHeaderSize - 1, ' ');
        m_output.Write(header + '\n');
    }

    void Put(std::span<const std::byte> bytes) { m_output.Write(bytes); }
    void Commit() { m_output.Commit(); }

 private:
    COutput m_output;
};

/// How many samples each well has among those chosen.
std::map<std::int32_t, std::uint64_t> CountWells(const CSampleSource& source) {
    std::map<std::int32_t, std::uint64_t> counts;
    source.ForEach([&](const CPiece& piece) { counts[piece.well] += piece.count; });
    return counts;
}

std::string WithWell(std::string target, std::int32_t well) {
    const auto mark = target.find(kWellMark);
    return mark == std::string::npos ? target : target.replace(mark, kWellMark.size(), std::to_string(well));
}

/// One array per well: the samples alone.
class CNpyArrays : public CSampleSink {
 public:
    CNpyArrays(const CSampleForm& form, const CSampleSource& source) : m_units(form.units) {
        const auto counts = CountWells(source);
        if (counts.empty()) throw CFailure("No samples are chosen, so there is no array to write.");
        if (counts.size() > kMostArrays)
            throw CFailure("There are too many wells for a file each; choose some by --well.");
        if (counts.size() > 1 && form.target.find(kWellMark) == std::string::npos)
            throw CFailure("There are " + std::to_string(counts.size()) +
                           " wells, and an array has one: choose it by --well, put {well} into the name of -o, or ask "
                           "for one --table of all.");
        for (const auto& [well, count] : counts)
            m_files.try_emplace(well, WithWell(form.target, well), form.source, m_units ? "'<f8'" : "'<u2'", count);
    }

    void Put(const CPiece& piece, std::int64_t /*time*/, std::span<const std::uint16_t> samples) override {
        auto bytes = std::as_bytes(samples);
        if (m_units) {
            const CRawDataChannelInfo& channel = ChannelOf(piece);
            m_values.clear();
            for (const std::uint16_t sample : samples)
                m_values.push_back(InUnits(sample, channel));
            bytes = std::as_bytes(std::span(m_values));
        }
        m_files.at(piece.well).Put(bytes);
    }

    void Commit() override {
        for (auto& file : m_files)
            file.second.Commit();
    }

 private:
    bool m_units;
    std::vector<double> m_values;
    std::map<std::int32_t, CNpyFile> m_files;
};

/// One table of all: an item per sample, with recording, well, time and value.
class CNpyTable : public CSampleSink {
 public:
    CNpyTable(const CSampleForm& form, const CSampleSource& source)
        : m_units(form.units), m_file(form.target, form.source, Type(form.units), Count(source)) {}

    void Put(const CPiece& piece, std::int64_t time, std::span<const std::uint16_t> samples) override {
        const CRawDataChannelInfo channel = m_units ? ChannelOf(piece) : CRawDataChannelInfo();
        const auto recording = static_cast<std::uint32_t>(piece.recordingIndex + 1);
        m_bytes.clear();
        for (const std::uint16_t sample : samples) {
            Add(recording);
            Add(piece.well);
            Add(time);
            if (m_units) {
                Add(InUnits(sample, channel));
            } else {
                Add(sample);
            }
            time = piece.TimeBehind(time, 1);
        }
        m_file.Put(std::as_bytes(std::span(m_bytes)));
    }

    void Commit() override { m_file.Commit(); }

 private:
    static std::string Type(bool units) {
        return std::string("[('recording','<u4'),('well','<i4'),('time','<i8'),") +
               (units ? "('value','<f8')]" : "('sample','<u2')]");
    }

    static std::uint64_t Count(const CSampleSource& source) {
        std::uint64_t count = 0;
        source.ForEach([&](const CPiece& piece) { count += piece.count; });
        return count;
    }

    void Add(auto number) {
        const auto* bytes = reinterpret_cast<const char*>(&number);
        m_bytes.insert(m_bytes.end(), bytes, bytes + sizeof number);
    }

    bool m_units;
    std::vector<char> m_bytes;
    CNpyFile m_file;
};

}  // namespace

std::unique_ptr<CSampleSink> MakeSampleSink(const CSampleForm& form, const CSampleSource& source) {
    using enum CSampleForm::EKind;
    switch (form.kind) {
        case NpyArrays:
            return std::make_unique<CNpyArrays>(form, source);
        case NpyTable:
            return std::make_unique<CNpyTable>(form, source);
        case Tsv:
            return std::make_unique<CTextTable>(form, '\t');
        case Csv:
            break;
    }
    return std::make_unique<CTextTable>(form, ',');
}

}  // namespace vxfile
