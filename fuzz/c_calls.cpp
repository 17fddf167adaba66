// Makes a list of calls of the C interface, each with right and wrong arguments. The list of its functions chooses
// them. Each argument is made by its type: a new type without a rule here doesn't compile.
#define VX_EXPERIMENTAL
#include <capi/vxfileio.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <set>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "fuzz/Fuzz.h"

namespace {

/// A handle is a pointer to a type that only the library knows.
template <class Type>
concept CHandle = std::is_class_v<Type> && !requires {
    sizeof(Type);
};
template <class Type>
concept CStruct = std::is_class_v<Type> && requires(Type value) {
    value.size;
};

/// Reference files, of which each list of calls gets a copy.
constexpr std::string_view kFiles[] = {"several_recordings.vxd", "unfinished.vxd",  "damaged_segments.vxd",
                                       "xml/settings.vxs",       "xml/results.vxr", "workbooks/small.xls"};
constexpr std::string_view kTexts[] = {"",
                                       "new",
                                       "no/such/folder",
                                       "Series",
                                       "Analyze",
                                       "Header/CompoundName",
                                       "Tasks",
                                       "Tasks/Analyze/Recordings/0/Wells/64",
                                       "Tasks/Analyze/Recordings/0/Wells/64/FPfastDetectionTimes",
                                       "Tasks/Analyze/Recordings/0/Wells/64/Average",
                                       "Tasks/Analyze/Recordings/0/Wells/64/FPfastDetected",
                                       "Tasks/Series/Recordings/0/Wells/7",
                                       "PropertyRecordPlate/Compounds/0/Label",
                                       "PropertyRecordPlate/Compounds",
                                       "PropertyRecording/Tick",
                                       "1e309",
                                       "\xFF\xB5"};
constexpr std::int64_t kNumbers[] = {0, 1, 2, 3, 11, 64, 100, 500, 1000, -1, INT32_MAX, INT64_MAX, INT64_MIN};
constexpr std::int64_t kElements = 8;  ///< Of every array that is passed to the library.
constexpr std::int64_t kCounts[] = {1, 0, 2, 3, 6, kElements, -1, INT64_MAX};

constexpr std::string_view NameOf(std::string_view path) { return path.substr(path.rfind('/') + 1); }

/// Memory that an argument points to, exactly as large as the call may use: the sanitizer notices every byte beyond.
class CMemory {
 public:
    explicit CMemory(std::size_t size, unsigned char fill = 0xA5)
        : m_bytes(std::make_unique_for_overwrite<unsigned char[]>(size)), m_before(size, fill) {
        std::memset(m_bytes.get(), fill, size);
    }

    template <class Type>
    Type* As() const {
        return reinterpret_cast<Type*>(m_bytes.get());
    }
    /// Remembers the content, which the call is compared with.
    void Keep() { m_before.assign(m_bytes.get(), m_bytes.get() + m_before.size()); }
    /// Returns whether the bytes from an offset on are as before the call.
    bool IsUnchanged(std::size_t from = 0) const {
        return from >= m_before.size() ||
               std::memcmp(m_bytes.get() + from, m_before.data() + from, m_before.size() - from) == 0;
    }

 private:
    std::unique_ptr<unsigned char[]> m_bytes;
    std::vector<unsigned char> m_before;
};

/// All handles of one input. Closed ones stay among them.
class CHandles {
 public:
    ~CHandles() {
        for (void* handle : m_all)
            Require((vx_close(handle) == VX_ERROR_HANDLE) == IsClosed(handle), "a handle closes once");
    }
    template <class Type>
    static const void* KindOf() {
        static constexpr char kKind = 0;
        return &kKind;
    }

    void Add(const void* kind, void* handle) {
        m_all.push_back(handle);
        m_kinds.push_back(kind);
    }
    void Close(const void* handle) { m_closed.insert(handle); }
    bool IsClosed(const void* handle) const { return m_closed.contains(handle); }
    /// Returns a handle: mostly the newest ones of that kind, now and then none, any or a closed one.
    void* Pick(CCalls& calls, const void* kind) const {
        const std::uint8_t byte = calls.Byte();
        if (byte >= 250) return byte == 255 ? const_cast<int*>(&m_stray) : nullptr;
        if (byte >= 240 || kind == nullptr) return m_all.empty() ? nullptr : m_all[byte % m_all.size()];
        std::size_t skip = byte % 3;
        void* found = nullptr;
        for (std::size_t i = m_all.size(); i > 0; --i) {
            if (m_kinds[i - 1] != kind) continue;
            found = m_all[i - 1];
            if (skip-- == 0) break;
        }
        return found;
    }

 private:
    std::vector<void*> m_all;
    std::vector<const void*> m_kinds;
    std::set<const void*> m_closed;
    int m_stray = 0;
};

int VX_CALL Progress(void* user, std::int64_t /*done*/, std::int64_t /*total*/) {
    return static_cast<CCalls*>(user)->Byte() == 255;
}
int VX_CALL Finding(void* user, std::int64_t offset, const char* where, const char* meaning) {
    Require(offset >= -1 && *where != '\0' && *meaning != '\0', "a finding has a place and a meaning");
    return static_cast<CCalls*>(user)->Byte() == 255;
}

/// The arguments of one call.
class CArguments {
 public:
    CArguments(CCalls& calls, CHandles& handles) : m_calls(calls), m_handles(handles) {}

    /// Makes an argument by its type and those of its neighbours.
    template <class Before, class Type, class After>
    Type Make() {
        if constexpr (std::is_arithmetic_v<Type>) {
            return Number<Type>(std::is_pointer_v<Before> && std::is_const_v<std::remove_pointer_t<Before>>);
        } else {
            using CTarget = std::remove_pointer_t<Type>;
            if constexpr (std::is_pointer_v<CTarget>) {
                return Out<std::remove_pointer_t<CTarget>>();
            } else if constexpr (std::is_void_v<CTarget> || CHandle<CTarget>) {
                return Handle<CTarget>();
            } else if constexpr (CStruct<CTarget>) {
                return Struct<CTarget>();
            } else if constexpr (std::is_const_v<CTarget>) {
                return Input<CTarget>();
            } else if constexpr (std::is_same_v<After, std::int64_t*>) {
                return Buffer<CTarget>();
            } else if constexpr (std::is_same_v<Type, std::int64_t*> && IsArray<Before>()) {
                return Size();
            } else {
                return Output<CTarget>();
            }
        }
    }

    /// Checks what a call may do to its arguments.
    void Check(int code) {
        std::int64_t size = 0;
        Require(vx_code_text(code, nullptr, &size) == VX_OK && size > 1, "the code is documented");
        Require(code != VX_ERROR_INTERNAL, "the library has no defect");
        Require(code != VX_ERROR_BUSY || m_isTwice, "only the call itself uses its handles");
        Require(!m_hasClosed || code != VX_OK, "a closed handle is refused");
        Require(!m_beginsClosed || code == VX_ERROR_HANDLE, "a closed handle is recognized");
        if (m_closing != nullptr && code != VX_ERROR_HANDLE) m_handles.Close(m_closing);
        if (m_madeKind != nullptr) {
            Require(m_made != nullptr, "there is a handle, even if the call failed");
            m_handles.Add(m_madeKind, m_made);
        }
        for (const CMemory& memory : m_inputs)
            Require(memory.IsUnchanged(), "what is passed stays");
        for (const CMemory& memory : m_outputs)
            Require(code == VX_OK || memory.IsUnchanged(), "a failed call changes no result");
        CheckBuffer(code);
        CheckError(m_isMaker ? m_made : m_first, code);
    }

 private:
    /// Returns whether the type is that of an array of results.
    template <class Type>
    static constexpr bool IsArray() {
        using CTarget = std::remove_pointer_t<Type>;
        return std::is_pointer_v<Type> && !std::is_const_v<CTarget> &&
               (std::is_arithmetic_v<CTarget> || std::is_same_v<CTarget, vx_run>);
    }

    template <class Type>
    Type Number(bool isCount) {
        const std::uint8_t byte = m_calls.Byte();
        if (isCount && sizeof(Type) == 8) return static_cast<Type>(kCounts[byte % std::size(kCounts)]);
        if (byte >= 200) return static_cast<Type>(m_calls.Signed(2));
        return static_cast<Type>(kNumbers[byte % std::size(kNumbers)]);
    }

    template <class Type>
    Type** Out() {
        m_isMaker = true;
        if (m_calls.Byte() == 255) return nullptr;
        m_madeKind = CHandles::KindOf<Type>();
        return reinterpret_cast<Type**>(&m_made);
    }

    template <class Type>
    Type* Handle() {
        void* const handle = m_handles.Pick(m_calls, std::is_void_v<Type> ? nullptr : CHandles::KindOf<Type>());
        const bool isClosed = m_handles.IsClosed(handle);
        m_hasClosed = m_hasClosed || isClosed;
        m_beginsClosed = m_beginsClosed || (isClosed && !m_isMaker && !m_hasFirst);
        if (std::is_same_v<Type, void>) m_closing = handle;  // the argument of vx_close alone
        if (std::is_void_v<Type>) return static_cast<Type*>(handle);
        m_isTwice = m_hasFirst && handle == m_first;
        if (!std::exchange(m_hasFirst, true)) m_first = handle;
        return static_cast<Type*>(handle);
    }

    template <class Type>
    Type* Struct() {
        constexpr std::int64_t kSize = sizeof(Type);
        constexpr std::int64_t kSizes[] = {kSize, kSize, kSize, kSize + 16, kSize - 8, 0, -1, 5000};
        const std::uint8_t byte = m_calls.Byte();
        if (byte == 255) return nullptr;
        const std::int64_t size = kSizes[byte % std::size(kSizes)];
        const bool isInput = std::is_const_v<Type>;
        CMemory memory(static_cast<std::size_t>(size > kSize && size < 4096 ? size : kSize), isInput ? 0 : 0xA5);
        auto* const made = memory.As<std::remove_const_t<Type>>();
        if constexpr (std::is_const_v<Type>) Fill(*made);
        made->size = size;
        return Kept(isInput ? m_inputs : m_outputs, std::move(memory)).template As<Type>();
    }

    void Fill(vx_recording_options& options) {
        options.unfinished = m_calls.Byte() % 2;
        options.up_to_damage = m_calls.Byte() % 2;
    }
    void Fill(vx_file_header& header) {
        header.file_type = Text();
        header.guid = Text();
        header.plate_id = Text();
        header.file_version = Number<std::int32_t>(false);
        header.compound_id = Number<std::int32_t>(false);
    }
    void Fill(vx_recording_header& header) {
        header.task = Text();
        header.dose = Number<std::int64_t>(false);
        header.number = Number<std::int32_t>(false);
    }
    void Fill(vx_callbacks& callbacks) {
        callbacks.user = &m_calls;
        callbacks.progress = Progress;
        callbacks.finding = Finding;
    }
    void Fill(vx_recover_options& options) {
        options.keep_cut = m_calls.Byte() % 2;
        options.replace = m_calls.Byte() % 2;
    }

    /// Returns an array, or a text, which is also long enough for every count.
    template <class Type>
    Type* Input() {
        if constexpr (std::is_same_v<Type, const char>) {
            return Text();
        } else {
            if (m_calls.Byte() == 255) return nullptr;
            CMemory memory(kElements * sizeof(Type));
            for (std::int64_t i = 0; i < kElements; ++i)
                memory.As<std::remove_const_t<Type>>()[i] = Number<std::remove_const_t<Type>>(false);
            return Kept(m_inputs, std::move(memory)).template As<Type>();
        }
    }

    /// Returns a text of the pool or of the input. None of them is a path out of the folder.
    const char* Text() {
        const std::uint8_t byte = m_calls.Byte();
        if (byte == 255) return nullptr;
        const std::size_t number = byte % (std::size(kFiles) + std::size(kTexts));
        const bool isFile = number < std::size(kFiles);
        std::string text(isFile ? NameOf(kFiles[number]) : kTexts[number - std::size(kFiles)]);
        if (byte >= 200) text = m_calls.Text();
        if (text.starts_with('/') || text.find("..") != std::string::npos) text = "new";
        CMemory memory(std::max<std::size_t>(text.size() + 1, kElements), 0);
        text.copy(memory.As<char>(), text.size());
        return Kept(m_inputs, std::move(memory)).As<const char>();
    }

    /// Returns a buffer whose size is the next argument.
    template <class Type>
    Type* Buffer() {
        constexpr std::size_t kRooms[] = {1000, 0, 1, 2, 20, 6};
        const std::uint8_t byte = m_calls.Byte();
        m_room = kRooms[byte % std::size(kRooms)];
        m_elementSize = sizeof(Type);
        m_isText = std::is_same_v<Type, char>;
        if (byte >= 220) return nullptr;
        m_buffer = CMemory(std::max<std::size_t>(m_room, 1) * sizeof(Type));
        return m_buffer->As<Type>();
    }

    std::int64_t* Size() {
        const std::uint8_t byte = m_calls.Byte();
        if (byte == 255) return nullptr;
        m_size = CMemory(sizeof(std::int64_t));
        *m_size->As<std::int64_t>() = byte >= 250 ? -1 : static_cast<std::int64_t>(m_room);
        m_size->Keep();
        return m_size->As<std::int64_t>();
    }

    template <class Type>
    Type* Output() {
        if (m_calls.Byte() == 255) return nullptr;
        return Kept(m_outputs, CMemory(sizeof(Type))).template As<Type>();
    }

    CMemory& Kept(std::vector<CMemory>& list, CMemory memory) {
        memory.Keep();
        return list.emplace_back(std::move(memory));
    }

    /// Checks a buffer and its size, the only results that a failed call may change.
    void CheckBuffer(int code) {
        const bool mayChange = code == VX_OK || code == VX_ERROR_SHORT_BUFFER || code == VX_ERROR_FILE;
        if (m_size) Require(mayChange || m_size->IsUnchanged(), "a failed call changes no size");
        if (!m_buffer) return;
        const bool mayFill = code == VX_OK || code == VX_ERROR_FILE || (code == VX_ERROR_SHORT_BUFFER && m_isText);
        if (!mayFill) return Require(m_buffer->IsUnchanged(), "a failed call changes no array");
        if (code != VX_OK) return;
        const std::int64_t used = *m_size->As<std::int64_t>();
        Require(used >= 0, "a size isn't negative");
        Require(m_buffer->IsUnchanged(static_cast<std::size_t>(used) * m_elementSize), "only what is used changes");
        if (m_isText) Require(m_buffer->As<char>()[used - 1] == '\0', "a text ends with a NUL");
    }

    /// Checks that a handle keeps the error of a failed call, which fits a buffer of any size.
    void CheckError(const void* handle, int code) {
        std::int64_t needed = 0;
        if (vx_last_error(handle, nullptr, &needed) != VX_OK) return;  // closed, or none
        Require(code == VX_OK || needed > 1, "a failed call has a text");
        std::int64_t size = m_calls.Byte();
        const std::int64_t used = std::min(size, needed);
        const CMemory memory(static_cast<std::size_t>(size));
        const int result = vx_last_error(handle, memory.As<char>(), &size);
        Require(size == needed && result == (used == needed ? VX_OK : VX_ERROR_SHORT_BUFFER), "its size is known");
        Require(used == 0 || memory.As<char>()[used - 1] == '\0', "it ends with a NUL");
    }

    CCalls& m_calls;
    CHandles& m_handles;
    void* m_made = nullptr;
    const void* m_madeKind = nullptr;
    bool m_isMaker = false;
    void* m_first = nullptr;  ///< The handle that keeps the error, if the call makes none.
    bool m_hasFirst = false;
    bool m_isTwice = false;       ///< The call gets one handle twice.
    bool m_hasClosed = false;     ///< The call gets a handle that is closed.
    bool m_beginsClosed = false;  ///< The first argument of the call is such a handle.
    void* m_closing = nullptr;
    std::vector<CMemory> m_inputs;
    std::vector<CMemory> m_outputs;
    std::optional<CMemory> m_buffer;
    std::optional<CMemory> m_size;
    std::size_t m_room = 0;
    std::size_t m_elementSize = 1;
    bool m_isText = false;
};

template <class... Types>
void Call(int(VX_CALL* function)(Types...), CCalls& calls, CHandles& handles) {
    using CAll = std::tuple<void*, Types..., void*>;
    CArguments arguments(calls, handles);
    [&]<std::size_t... I>(std::index_sequence<I...>) {
        std::tuple<Types...> made{
            arguments.Make<std::tuple_element_t<I, CAll>, Types, std::tuple_element_t<I + 2, CAll>>()...};
        arguments.Check(std::apply(function, made));
    }
    (std::index_sequence_for<Types...>());
}

/// All functions of the list.
constexpr void (*kCalls[])(CCalls&, CHandles&) = {
#define CALL(name) [](CCalls& calls, CHandles& handles) { Call(name, calls, handles); }
#include "c_functions.inc"
};

/// While it lives, the current folder is one that has copies of the files and nothing else.
class CFolderOfCalls {
 public:
    CFolderOfCalls() {
        static const std::vector<std::string> kContents = ReadFiles();
        std::filesystem::current_path(CFuzzFolder::Path(""));
        for (const auto& entry : std::filesystem::directory_iterator("."))
            std::filesystem::remove_all(entry);
        for (std::size_t i = 0; i < std::size(kFiles); ++i)
            WriteBytes(std::string(NameOf(kFiles[i])), kContents[i]);
    }
    ~CFolderOfCalls() { std::filesystem::current_path(m_before); }
    CFolderOfCalls(const CFolderOfCalls&) = delete;
    CFolderOfCalls& operator=(const CFolderOfCalls&) = delete;

 private:
    static std::vector<std::string> ReadFiles() {
        std::vector<std::string> contents;
        for (const std::string_view file : kFiles)
            contents.push_back(ReadBytes(VXFILEIO_REFERENCE_DIR "/" + std::string(file)));
        return contents;
    }

    const std::filesystem::path m_before = std::filesystem::current_path();
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const CFolderOfCalls folder;
    CCalls calls(Input(data, size));
    CHandles handles;
    while (!calls.AtEnd())
        kCalls[calls.Byte() % std::size(kCalls)](calls, handles);
    return 0;
}
