#pragma once

#include <string>
#include <string_view>

namespace vxfile {

/// What kind of file somebody has in hand.
enum class EFileKind { RawData, Settings, Results, Workbook, Unknown, Empty };

/// Tells the kind of a file by its content, whatever its name is. A file that is cut or damaged is still of its kind as
/// long as its first bytes tell one; otherwise it is unknown. Throws `CFailure` if it can't be opened.
EFileKind FileKindOf(const std::string& path);

/// Tells whether it is a file of this system.
constexpr bool IsOurs(EFileKind kind) { return kind != EFileKind::Unknown && kind != EFileKind::Empty; }

/// Returns what people call a file of this kind, such as "raw data file".
std::string_view NameOf(EFileKind kind);

/// Returns the same with its article, such as "a raw data file".
std::string ArticleAndNameOf(EFileKind kind);

/// Throws `CFailure` if a file is of another kind or can't be opened.
void RequireKind(EFileKind kind, const std::string& path);

/// Returns the word by which JSON tells it, such as "raw".
std::string_view WordOf(EFileKind kind);

}  // namespace vxfile
