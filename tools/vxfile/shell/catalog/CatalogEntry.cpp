#include "tools/vxfile/shell/catalog/CatalogEntry.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "tools/vxfile/document/DocumentHead.h"
#include "tools/vxfile/raw/RawInfo.h"
#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/report/Json.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/shell/FileKind.h"
#include "tools/vxfile/workbook/WorkbookInfo.h"

using vxfileio::helpers::Escaped;

namespace vxfile {

namespace {

using enum EColumnType;

constexpr CColumn kFileColumns[] = {
    {"path", Text, "", "The path of the file"},
    {"kind", Text, "", "raw, settings, results, workbook, unknown or empty"},
    {"size", Whole, "byte", "The size of the file"},
    {"modified", Text, "", "When the file was last modified: ISO 8601, UTC"},
    {"guid", Text, "", "The Guid of the run, in small letters without braces"},
    {"plate", Text, "", "The plate, in raw data files"},
    {"compound", Text, "", "The name of the compound"},
    {"recordings", Whole, "", "The number of recordings, in raw data files"},
    {"file_state", Text, "", "finished, unfinished, damaged or unreadable"},
    {"reason", Text, "", "Why the file isn't finished"},
};

constexpr CColumn kRecordingColumns[] = {
    {"task", Text, "", "The task of the recording"},
    {"number", Whole, "", "The number of the recording within its task"},
    {"dose", Whole, "pM", "The dose of the recording"},
    kDoseTextColumn,
    {"wells", Whole, "", "The number of wells of the recording"},
    {"samples", Whole, "", "The number of samples of all wells"},
    {"state", Text, "", "finished, unfinished or damaged"},
};

void Damage(CCatalogEntry& entry, std::string reason) {
    entry.state = kDamaged;
    entry.reason = std::move(reason);
}

std::string_view StateOf(const CJson& recording) {
    if (recording["damaged"]) return kDamaged;
    return recording["finished"] ? kFinished : kUnfinished;
}

void ScanRawData(const std::string& path, CCatalogEntry& entry) {
    const CJson info = InfoOfRawData(path, true, false).Json();
    entry.guid = BareGuid(info["guid"]);
    entry.plate = info["plateID"];
    entry.compound = info["compoundName"];
    entry.state = info["lastFinished"] ? kFinished : kUnfinished;
    for (const auto& recording : info["recordings"]) {
        entry.recordings.push_back({.task = recording["task"],
                                    .number = recording["number"],
                                    .dose = recording["dose"],
                                    .wells = static_cast<std::int64_t>(recording["channels"].size()),
                                    .samples = recording["samples"],
                                    .state = StateOf(recording)});
        if (entry.recordings.back().state == kUnfinished) entry.state = kUnfinished;
    }
    if (entry.recordings.empty()) entry.reason = "It has no recording yet.";
    if (!entry.recordings.empty() && entry.state == kUnfinished) entry.reason = "A recording isn't finished.";
    if (info.contains("damage")) Damage(entry, info["damage"]);
}

void ScanDocument(const std::string& path, CCatalogEntry& entry) {
    const CXmlFileHeader head = HeadOfDocument(path);
    entry.guid = BareGuid(Readable(head.Guid));
    entry.compound = Readable(head.CompoundName);
    if (!EndsWithRoot(path)) Damage(entry, "The document is cut: it doesn't end with the end tag of its root.");
}

void ScanKind(EFileKind kind, const std::string& path, CCatalogEntry& entry) {
    switch (kind) {
        case EFileKind::RawData:
            return ScanRawData(path, entry);
        case EFileKind::Settings:
        case EFileKind::Results:
            return ScanDocument(path, entry);
        case EFileKind::Workbook:
            static_cast<void>(InfoOfWorkbook(path));  // throws if it is damaged
            return;
        case EFileKind::Unknown:
            return Damage(entry, "It isn't a file of this system, or its beginning is damaged.");
        case EFileKind::Empty:
            entry.state = kUnfinished;
            entry.reason = "It is empty.";
    }
}

CCell TextOrMissing(const std::string& text) { return text.empty() ? CCell() : CCell(text); }

}  // namespace

std::string PathText(const std::string& path) {
    std::string text = path;
    constexpr std::string_view kBackslash = "\\x5c";
    const bool isEscaped = std::filesystem::path::preferred_separator != '\\';
    for (std::size_t at = 0; isEscaped && (at = text.find("\\x", at)) != std::string::npos; at += kBackslash.size())
        text.replace(at, 1, kBackslash);
    return Escaped(text);
}

CStamp StampOf(const std::string& path) {
    std::error_code error;
    const auto time = std::filesystem::last_write_time(path, error);
    const auto size = std::filesystem::file_size(path, error);
    if (error) return {};
    using namespace std::chrono;
    const auto since = floor<nanoseconds>(std::filesystem::file_time_type::clock::to_sys(time));
    const auto day = floor<days>(since);
    const year_month_day date(day);
    const hh_mm_ss clock(since - day);
    std::array<char, 48> text{};
    static_cast<void>(
        std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%09dZ", static_cast<int>(date.year()),
                      static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                      static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                      static_cast<int>(clock.seconds().count()), static_cast<int>(clock.subseconds().count())));
    return {static_cast<std::int64_t>(size), text.data()};
}

CCatalogEntry ScanFile(const std::string& path) {
    CCatalogEntry entry{.path = PathText(path), .stamp = StampOf(path)};
    EFileKind kind = EFileKind::Unknown;
    entry.reason = Escaped(FailureOf([&] { kind = FileKindOf(path); }));
    if (entry.reason.empty()) {
        entry.kind = WordOf(kind);
        const std::string failure = FailureOf([&] { ScanKind(kind, path, entry); });
        if (!failure.empty()) Damage(entry, Escaped(failure));
    } else {
        entry.state = kUnreadable;
    }
    if (entry.state == kFinished || entry.state == kUnfinished || StampOf(path) == entry.stamp) return entry;
    entry.state = kUnfinished;
    entry.reason = "It changed while it was read.";
    return entry;
}

std::span<const CColumn> FileColumns() { return kFileColumns; }
std::span<const CColumn> RecordingColumns() { return kRecordingColumns; }

CCells CellsOf(const CCatalogEntry& entry) {
    const bool isRaw = entry.kind == WordOf(EFileKind::RawData);
    const auto recordings = static_cast<std::int64_t>(entry.recordings.size());
    return {entry.path,
            entry.kind.empty() ? CCell() : CCell(entry.kind),
            entry.stamp.modified.empty() ? CCell() : CCell(entry.stamp.size),
            TextOrMissing(entry.stamp.modified),
            TextOrMissing(entry.guid),
            TextOrMissing(entry.plate),
            TextOrMissing(entry.compound),
            isRaw ? CCell(recordings) : CCell(),
            entry.state,
            TextOrMissing(entry.reason)};
}

CCells CellsOf(const CCatalogRecording* recording, std::string& doseText) {
    if (recording == nullptr) return CCells(RecordingColumns().size());
    doseText = DoseText(recording->dose);
    return {recording->task,  recording->number,  recording->dose, doseText,
            recording->wells, recording->samples, recording->state};
}

}  // namespace vxfile
