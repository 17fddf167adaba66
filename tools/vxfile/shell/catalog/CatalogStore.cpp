#include "tools/vxfile/shell/catalog/CatalogStore.h"

#include <sqlite3.h>

#include <filesystem>
#include <system_error>
#include <type_traits>

#include "verify/Failure.h"

namespace vxfile {

namespace {

/// "VXCA", which identifies the file to other programs.
constexpr int kApplicationID = 0x56584341;

/// The version of the schema, in `user_version`. Raise it with each change of columns, tables or views.
constexpr int kSchemaVersion = 1;

constexpr std::string_view kIndexes = R"(
CREATE INDEX files_guid ON files(guid);
CREATE INDEX files_state ON files(file_state);
CREATE INDEX recordings_path ON recordings(path);
CREATE INDEX recordings_task ON recordings(task, dose);
CREATE VIEW runs AS
  SELECT guid, max(compound) AS compound, max(plate) AS plate,
         max(CASE kind WHEN 'raw' THEN path END) AS raw,
         max(CASE kind WHEN 'settings' THEN path END) AS settings,
         max(CASE kind WHEN 'results' THEN path END) AS results,
         count(*) AS files
  FROM files WHERE guid IS NOT NULL GROUP BY guid;
)";

/// Returns the definitions of columns.
std::string Definitions(std::span<const CColumn> columns) {
    std::string text;
    for (const auto& column : columns) {
        const bool isText = column.type == EColumnType::Text;
        const bool isReal = column.type == EColumnType::Real;
        text.append(", ").append(column.name).append(isText ? " TEXT" : isReal ? " REAL" : " INTEGER");
    }
    return text;
}

/// Returns ",?" for each column.
std::string Marks(std::size_t columns) {
    std::string text;
    for (std::size_t i = 0; i < columns; ++i)
        text += ",?";
    return text;
}

struct CCloser {
    void operator()(sqlite3* database) const noexcept { sqlite3_close(database); }
    void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
};

/// A connection and its prepared statements.
class CDatabase : public CCatalogStore {
 public:
    explicit CDatabase(const std::string& path) : m_path(path) {
        std::error_code none;
        m_isNew = !std::filesystem::exists(path, none);
        sqlite3* opened = nullptr;
        const int result = sqlite3_open(path.c_str(), &opened);
        m_database.reset(opened);
        Check(result);
        sqlite3_busy_timeout(opened, 10'000);
        RefuseOthers();
        Execute("PRAGMA foreign_keys = ON");
        Execute("BEGIN IMMEDIATE");
        if (Number("PRAGMA user_version") == 0) CreateSchema();
        Execute("CREATE TEMP TABLE seen (path TEXT PRIMARY KEY) WITHOUT ROWID");
        m_see = Prepare("INSERT OR IGNORE INTO seen VALUES (?)");
        m_isKnown = Prepare("SELECT 1 FROM files WHERE path = ? AND size = ? AND modified = ? AND file_state <> '" +
                            std::string(kUnreadable) + "'");
        m_remove = Prepare("DELETE FROM files WHERE path = ?");
        m_putFile = Prepare("INSERT INTO files VALUES (" + Marks(FileColumns().size()).substr(1) + ")");
        m_putRecording = Prepare("INSERT INTO recordings VALUES (?" + Marks(RecordingColumns().size()) + ")");
    }

    ~CDatabase() override {
        for (auto* statement : {&m_see, &m_isKnown, &m_remove, &m_putFile, &m_putRecording})
            statement->reset();
        m_database.reset();  // rolls back what isn't committed
        std::error_code none;
        if (m_isNew && !m_isCommitted) std::filesystem::remove(m_path, none);
    }

    bool IsKnown(const std::string& path, const CStamp& stamp) override {
        Run(m_see, {path});
        return Run(m_isKnown, {path, stamp.size, stamp.modified});
    }

    void KeepBelow(const std::string& folder) override {
        const CStatement keep = Prepare("INSERT OR IGNORE INTO seen SELECT path FROM files WHERE " + Below());
        Run(keep, {folder});
    }

    void Put(const CCatalogEntry& entry) override {
        Run(m_see, {entry.path});
        Run(m_remove, {entry.path});
        Run(m_putFile, CellsOf(entry));
        std::string doseText;
        for (const auto& recording : entry.recordings) {
            CCells cells = CellsOf(&recording, doseText);
            cells.insert(cells.begin(), entry.path);
            Run(m_putRecording, cells);
        }
    }

    void RemoveOthersBelow(const std::string& folder) override {
        const CStatement remove = Prepare("DELETE FROM files WHERE " + Below() + " AND path NOT IN seen");
        Run(remove, {folder});
    }

    std::map<std::string, std::uint64_t> States() override {
        std::map<std::string, std::uint64_t> states;
        const CStatement count =
            Prepare("SELECT file_state, count(*) FROM files WHERE path IN seen GROUP BY file_state");
        while (Step(count)) {
            const auto* const state = static_cast<const char*>(sqlite3_column_blob(count.get(), 0));
            states[std::string(state, static_cast<std::size_t>(sqlite3_column_bytes(count.get(), 0)))] =
                static_cast<std::uint64_t>(sqlite3_column_int64(count.get(), 1));
        }
        return states;
    }

    void Commit() override {
        Execute("COMMIT");
        m_isCommitted = true;
    }

 private:
    using CStatement = std::unique_ptr<sqlite3_stmt, CCloser>;

    /// The condition for paths below a folder.
    static std::string Below() { return "substr(path, 1, length(?1) + 1) = ?1 || '/'"; }

    void Check(int result) const {
        if (result == SQLITE_OK || result == SQLITE_ROW || result == SQLITE_DONE) return;
        const std::string cause = m_database ? sqlite3_errmsg(m_database.get()) : sqlite3_errstr(result);
        throw CFailure("The database " + m_path + " can't be used: " + cause + "; nothing in it was changed.");
    }

    void Execute(const std::string& sql) const {
        Check(sqlite3_exec(m_database.get(), sql.c_str(), nullptr, nullptr, nullptr));
    }

    CStatement Prepare(const std::string& sql) const {
        sqlite3_stmt* statement = nullptr;
        Check(sqlite3_prepare_v2(m_database.get(), sql.c_str(), -1, &statement, nullptr));
        return CStatement(statement);
    }

    bool Step(const CStatement& statement) const {
        const int result = sqlite3_step(statement.get());
        Check(result);
        return result == SQLITE_ROW;
    }

    std::int64_t Number(const std::string& sql) const {
        const CStatement statement = Prepare(sql);
        return Step(statement) ? sqlite3_column_int64(statement.get(), 0) : 0;
    }

    static int Bind(sqlite3_stmt* statement, int index, const CCell& cell) {
        return std::visit(
            [&]<class Value>(const Value& value) {
                if constexpr (std::is_same_v<Value, std::string_view>) {
                    return sqlite3_bind_text64(statement, index, value.data(), value.size(), SQLITE_STATIC,
                                               SQLITE_UTF8);
                } else if constexpr (std::is_same_v<Value, double>) {
                    return sqlite3_bind_double(statement, index, value);
                } else if constexpr (std::is_same_v<Value, std::monostate>) {
                    return sqlite3_bind_null(statement, index);
                } else {
                    return sqlite3_bind_int64(statement, index, static_cast<sqlite3_int64>(value));
                }
            },
            cell);
    }

    /// Runs a statement with these values. Returns whether it has a row.
    bool Run(const CStatement& statement, const CCells& cells) const {
        for (std::size_t i = 0; i < cells.size(); ++i)
            Check(Bind(statement.get(), static_cast<int>(i) + 1, cells[i]));
        const bool hasRow = Step(statement);
        Check(sqlite3_reset(statement.get()));
        Check(sqlite3_clear_bindings(statement.get()));
        return hasRow;
    }

    void RefuseOthers() const {
        const bool isEmpty = Number("SELECT count(*) FROM sqlite_master") == 0;
        if (!isEmpty && Number("PRAGMA application_id") != kApplicationID)
            throw CFailure(m_path + " is a database of another program; choose another name.");
        if (Number("PRAGMA user_version") > kSchemaVersion)
            throw CFailure(m_path + " was written by a newer vxfile; use that, or choose another name.");
    }

    void CreateSchema() const {
        Execute("PRAGMA application_id = " + std::to_string(kApplicationID));
        Execute("PRAGMA user_version = " + std::to_string(kSchemaVersion));
        const auto columns = FileColumns();
        Execute("CREATE TABLE files (path TEXT PRIMARY KEY" + Definitions(columns.subspan(1)) + ")");
        Execute("CREATE TABLE recordings (path TEXT NOT NULL REFERENCES files(path) ON DELETE CASCADE" +
                Definitions(RecordingColumns()) + ")");
        Execute(std::string(kIndexes));
    }

    std::string m_path;
    bool m_isNew = false;
    bool m_isCommitted = false;
    std::unique_ptr<sqlite3, CCloser> m_database;
    CStatement m_see;
    CStatement m_isKnown;
    CStatement m_remove;
    CStatement m_putFile;
    CStatement m_putRecording;
};

}  // namespace

std::unique_ptr<CCatalogStore> OpenCatalogStore(const std::string& path) { return std::make_unique<CDatabase>(path); }

}  // namespace vxfile
