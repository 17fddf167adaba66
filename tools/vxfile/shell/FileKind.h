#pragma once

#include <string>
#include <string_view>

namespace vxfile {

/// The kind of a file.
enum class EFileKind { RawData, Settings, Results, Workbook, Unknown, Empty };

/// Returns the kind of a file by its content, regardless of its name. A cut or damaged file keeps its kind if its first
/// bytes identify it; otherwise it is unknown. Throws `CFailure` if it can't be opened.
EFileKind FileKindOf(const std::string& path);

/// Returns whether it is a file of this system.
constexpr bool IsOurs(EFileKind kind) { return kind != EFileKind::Unknown && kind != EFileKind::Empty; }

/// Returns the name of this kind for people, such as "raw data file".
std::string_view NameOf(EFileKind kind);

/// Returns the same with its article, such as "a raw data file".
std::string ArticleAndNameOf(EFileKind kind);

/// Throws `CFailure` if a file is of another kind or can't be opened.
void RequireKind(EFileKind kind, const std::string& path);

/// Returns the name of this kind in JSON, such as "raw".
std::string_view WordOf(EFileKind kind);

}  // namespace vxfile
