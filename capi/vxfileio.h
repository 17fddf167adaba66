/*
 * vxfileio.h - the C interface of VX-FileIO
 *
 * Reads and writes the files of a cell screening instrument: raw data (.vxd), settings (.vxs) and results
 * (.vxr). C99 and C++ programs include this header and link libvxfileio_c (Windows: vxfileio_c.dll with
 * vxfileio_c.lib). Every other language calls the same functions. docs/c-interface.md has examples.
 *
 * CONVENTIONS. They hold for every function, so the functions below don't repeat them.
 *
 * Results
 *   Every function returns VX_OK (0) or one of the codes below. No function throws, ends the program or
 *   prints. Unless its comment says otherwise, a failed call changes nothing: neither the handle's object nor
 *   what the arguments point to. Programs must expect codes that they don't know: later versions add some.
 *
 * Handles
 *   A handle is a pointer to something that only the library knows. A function that makes one stores it in
 *   its first argument, `out`. It does so even if it fails, so that vx_last_error can report why; such a
 *   handle is good for vx_last_error and vx_close, and every other function returns VX_ERROR_STATE for it.
 *   `*out` is NULL only if memory ran out.
 *   The caller closes every handle with vx_close, in any order: a handle keeps alive what it was made from.
 *   Closing NULL does nothing. A handle that is NULL, closed or no handle at all is VX_ERROR_HANDLE; it is
 *   never followed.
 *
 * Threads
 *   Different handles can be used in different threads at the same time, even if one was made from the other.
 *   While one call uses a handle, every other call with the same handle returns VX_ERROR_BUSY. A callback can
 *   call any function. The handle that its own call makes doesn't exist yet: *out is NULL.
 *
 * Errors
 *   Each handle keeps the text of its last failed call; see vx_last_error. A call that works doesn't change
 *   it, and neither does one that finds its first handle busy. A handle whose open call failed keeps that
 *   failure.
 *
 * Texts
 *   Paths and the texts of errors are UTF-8 on every system. Texts that are stored in files are bytes:
 *   writers take them as they are, readers return them as they are. vx_to_utf8 turns them into UTF-8 for
 *   display. Texts that are passed to the library end with a NUL.
 *
 * Buffers
 *   The caller owns every buffer. Texts and arrays are returned in pairs of arguments: `buffer` and `size`
 *   (in bytes) or an array and `count` (in elements). If the buffer is NULL, the call stores in *size or
 *   *count what it needs. Otherwise *size or *count must hold the room, and the call stores how much it used.
 *   A text is followed by a NUL, which *size includes; the text itself has *size - 1 bytes and may contain
 *   NULs. If the room is too small, the call stores what it needs and returns VX_ERROR_SHORT_BUFFER. Then an
 *   array is unchanged, and a text is cut to the room, with its NUL. Nothing beyond what is used is ever
 *   changed. A read that fails with VX_ERROR_FILE may have changed the array.
 *
 * Structs
 *   A struct begins with `size`, which must be its sizeof. A macro for each struct sets that and clears the
 *   rest: `vx_raw_info info = VX_RAW_INFO_INIT;`. Calls don't change `size`. Later versions add members at the
 *   end. As an argument, a member that is 0 or NULL means what its comment says, and every later member means
 *   "as before" then. A struct that is longer than the library's is accepted if all that the library doesn't
 *   know is zero. As a result, a longer struct gets zeros there, and a shorter one gets the members that it
 *   has. A size below that of version 1 or above 4096 is VX_ERROR_STRUCT.
 *
 * Numbers
 *   Times and sample intervals are in the instrument's time unit; the library doesn't interpret them. Both
 *   ends of a range of times are included. Doses are picomolar. Indexes begin at 0. An index out of range is
 *   VX_ERROR_ARGUMENT or VX_ERROR_NOT_FOUND. Truth values are int32_t: 0 is false, anything else is true.
 *
 * Growth
 *   A function, a code and a member, once released, keep their meaning in all 1.x versions. The functions at
 *   the end, which need VX_EXPERIMENTAL, may still change.
 */
#ifndef VXFILEIO_C_H
#define VXFILEIO_C_H

#include <stdint.h>

/* The calling convention of every function and callback. */
#if defined(_WIN32)
#define VX_CALL __cdecl
#else
#define VX_CALL
#endif

#if defined(VX_BUILDING) && !defined(_WIN32)
#define VX_API __attribute__((visibility("default")))
#elif defined(_WIN32) && !defined(VX_BUILDING)
#define VX_API __declspec(dllimport)
#else
#define VX_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The version of this header: 10000 x major + 100 x minor + patch. */
#define VX_VERSION 10000

/* ---- Codes ------------------------------------------------------------------------------------------------------- */

enum vx_code {
    VX_OK = 0,
    /* Mistakes of the caller */
    VX_ERROR_ARGUMENT = 1,     /* An argument is NULL, negative, out of range or unknown. */
    VX_ERROR_HANDLE = 2,       /* The handle is NULL, closed, or was never one. */
    VX_ERROR_KIND = 3,         /* The handle is of another kind. */
    VX_ERROR_BUSY = 4,         /* Another call is using the handle. */
    VX_ERROR_STATE = 5,        /* Not possible now: the handle's open call failed, for instance. */
    VX_ERROR_STRUCT = 6,       /* A struct has a wrong size, or members that this version doesn't know. */
    VX_ERROR_SHORT_BUFFER = 7, /* The buffer is too small; its size or count holds what is needed. */
    VX_ERROR_NOT_FOUND = 8,    /* There is nothing of this name, number or path. */
    VX_ERROR_TYPE = 9,         /* The value has another type. */
    VX_ERROR_VALUE = 10,       /* The value can't be stored there, or doesn't fit the type that was asked for. */
    VX_ERROR_REFUSED = 11,     /* The writer refuses a value or the order of calls. Nothing is written. */
    /* The outside world */
    VX_ERROR_FILE = 20,  /* The file can't be opened or read, or is damaged. */
    VX_ERROR_WRITE = 21, /* The system refused a write, or readers can't use a value as it was written. */
    VX_DAMAGED = 22,     /* The file was read as far as possible, but isn't as it should be. */
    VX_CANCELLED = 30,   /* A callback ended the work. */
    VX_END = 31,         /* There is nothing more. */
    VX_ERROR_MEMORY = 40,
    VX_ERROR_INTERNAL = 41 /* A defect of the library. */
};

/* ---- Handles ----------------------------------------------------------------------------------------------------- */

typedef struct vx_raw vx_raw;             /* A raw data file that is open for reading. */
typedef struct vx_recording vx_recording; /* The segments of one of its recordings. */
typedef struct vx_selection vx_selection; /* Samples that were selected from a recording. */
typedef struct vx_segments vx_segments;   /* The segments of a recording, read one after the other. */
typedef struct vx_writer vx_writer;       /* A raw data file that is being written. */

/* Closes a handle of any kind. Even if this fails, the handle can't be used again, unless the result is VX_ERROR_BUSY.
 * A writer is finished first, as by vx_writer_finish; VX_ERROR_WRITE then means that the file isn't complete. */
VX_API int VX_CALL vx_close(void* handle);

/* Returns the text of the last failed call with this handle; empty if no call has failed. A call with several handles
 * keeps its error in the first. If this call fails, the text stays as it was. */
VX_API int VX_CALL vx_last_error(const void* handle, char* buffer, int64_t* size);

/* Returns what a code means, in a few words. VX_ERROR_NOT_FOUND for a number that is no code. */
VX_API int VX_CALL vx_code_text(int32_t code, char* buffer, int64_t* size);

/* Returns the version of the library, in the form of VX_VERSION. */
VX_API int VX_CALL vx_get_version(int32_t* version);

/* Turns `length` bytes of a text from a file into UTF-8. Bytes that are UTF-8 already stay; otherwise each byte is
 * taken as a character of Latin-1, as the instrument writes it. */
VX_API int VX_CALL vx_to_utf8(const char* bytes, int64_t length, char* buffer, int64_t* size);

/* ---- Reading raw data -------------------------------------------------------------------------------------------- */

/* What a raw data file is. */
typedef struct vx_raw_info {
    int64_t size;
    int64_t recordings;   /* Number of recordings. */
    int32_t file_version; /* Version of the format. */
    int32_t compound_id;
} vx_raw_info;
#define VX_RAW_INFO_INIT \
    { sizeof(vx_raw_info), 0, 0, 0 }

/* The texts of a file header. */
enum vx_raw_text {
    VX_RAW_HEADER_ID = 0,
    VX_RAW_FILE_TYPE = 1,
    VX_RAW_PROGRAM_VERSION = 2,
    VX_RAW_GUID = 3,
    VX_RAW_PLATE_ID = 4,
    VX_RAW_COMPOUND_NAME = 5
};

/* The lists of a file header, by the tasks that set them. */
enum vx_raw_list { VX_RAW_PRE_QC = 0, VX_RAW_COMPOUND_TEST = 1, VX_RAW_POST_QC = 2 };

/* One recording, from its header. */
typedef struct vx_recording_info {
    int64_t size;
    int64_t dose;
    int64_t recording_time; /* Its length. */
    uint64_t start_time;    /* 0 in files of version 1. */
    int64_t wells;          /* Number of wells that the header lists. */
    int32_t number;         /* Its number within its task. */
    int32_t is_finished;    /* Whether its writer has finished it. */
} vx_recording_info;
#define VX_RECORDING_INFO_INIT \
    { sizeof(vx_recording_info), 0, 0, 0, 0, 0, 0 }

/* Opens a raw data file and reads its header and those of all recordings. The file may still be growing; open it again
 * to see new recordings, or that one has been finished. */
VX_API int VX_CALL vx_raw_open(vx_raw** out, const char* path);
VX_API int VX_CALL vx_raw_get_info(vx_raw* raw, vx_raw_info* info);
/* Returns a text of the file header; `text` is one of vx_raw_text. */
VX_API int VX_CALL vx_raw_get_text(vx_raw* raw, int32_t text, char* buffer, int64_t* size);
/* Returns a list of the file header; `list` is one of vx_raw_list. */
VX_API int VX_CALL vx_raw_get_list(vx_raw* raw, int32_t list, int64_t* values, int64_t* count);
/* Returns what the header of a recording says. Recordings are counted in the order of the file. */
VX_API int VX_CALL vx_raw_get_recording(vx_raw* raw, int64_t index, vx_recording_info* info);
/* Returns the task that made a recording, such as "Series". */
VX_API int VX_CALL vx_raw_get_task(vx_raw* raw, int64_t index, char* buffer, int64_t* size);
/* Returns the index of the recording with this task and number. If several match, the last finished one counts, or the
 * last one if no match is finished. VX_ERROR_NOT_FOUND if nothing matches. */
VX_API int VX_CALL vx_raw_find_recording(vx_raw* raw, const char* task, int32_t number, int64_t* index);

/* How to open a recording. */
typedef struct vx_recording_options {
    int64_t size;
    int32_t unfinished;   /* Read a recording that isn't finished, as far as whole segments go by now. */
    int32_t up_to_damage; /* Keep the segments before a damaged one; vx_recording_get_damage has the failure. */
} vx_recording_options;
#define VX_RECORDING_OPTIONS_INIT \
    { sizeof(vx_recording_options), 0, 0 }

/* How much a recording holds. */
typedef struct vx_recording_state {
    int64_t size;
    int64_t segments;        /* Number of segments. */
    int64_t wells;           /* Number of wells: those of the header and any others that have segments. */
    int64_t certain_samples; /* Samples that are certainly in the file: not beyond its end, nor still being written. */
} vx_recording_state;
#define VX_RECORDING_STATE_INIT \
    { sizeof(vx_recording_state), 0, 0, 0 }

/* One well of a recording. */
typedef struct vx_well_info {
    int64_t size;
    double units_per_ad; /* Physical units per AD step; NaN if the header doesn't list the well. */
    int64_t interval;    /* Time from one sample to the next; 0 if the header doesn't list the well. */
    int32_t well;        /* Its ID. */
    int32_t ad_zero;     /* AD value that means zero. */
} vx_well_info;
#define VX_WELL_INFO_INIT \
    { sizeof(vx_well_info), 0, 0, 0, 0 }

/* One segment: samples of one well that were recorded together. */
typedef struct vx_segment_info {
    int64_t size;
    int64_t samples;   /* Number of samples. */
    int64_t time_from; /* Time of the first sample. */
    int64_t time_to;   /* Time of the last sample, or up to less than one interval later. */
    int64_t offset;    /* Of the first sample: bytes from the start of the file. */
    int32_t well;      /* ID of its well. */
    int32_t reserved;  /* 0 */
} vx_segment_info;
#define VX_SEGMENT_INFO_INIT \
    { sizeof(vx_segment_info), 0, 0, 0, 0, 0, 0 }

/* Opens a recording: reads the headers of all its segments. By default (`options` NULL) VX_ERROR_FILE if the recording
 * isn't finished or is damaged. */
VX_API int VX_CALL vx_recording_open(vx_recording** out, vx_raw* raw, int64_t index,
                                     const vx_recording_options* options);
VX_API int VX_CALL vx_recording_get_state(vx_recording* recording, vx_recording_state* state);
/* Returns the failure after the last segment; empty unless the recording was opened up to damage and is damaged. */
VX_API int VX_CALL vx_recording_get_damage(vx_recording* recording, char* buffer, int64_t* size);
/* Returns the IDs of the wells, each once: those of the header in its order, then others that have segments. */
VX_API int VX_CALL vx_recording_get_wells(vx_recording* recording, int32_t* wells, int64_t* count);
/* Returns how the samples of a well turn into physical units: (sample - ad_zero) x units_per_ad. */
VX_API int VX_CALL vx_recording_get_well(vx_recording* recording, int32_t well, vx_well_info* info);
/* Returns one segment, counted in the order of the file. */
VX_API int VX_CALL vx_recording_get_segment(vx_recording* recording, int64_t number, vx_segment_info* info);
/* Reads the samples of one segment. Those beyond the end of a cut file are 0. */
VX_API int VX_CALL vx_recording_read_segment(vx_recording* recording, int64_t number, uint16_t* samples,
                                             int64_t* count);

/* The range of all times. */
#define VX_TIME_FIRST INT64_MIN
#define VX_TIME_LAST INT64_MAX

/* Reads the samples of one well with times from `from` to `to`. They come in the order of the segments; use a selection
 * to see gaps and overlaps. It is not an error if the well has no samples; *count is 0 then. */
VX_API int VX_CALL vx_recording_read(vx_recording* recording, int32_t well, int64_t from, int64_t to, uint16_t* samples,
                                     int64_t* count);
/* Does the same with values in physical units. Those of a well that the header doesn't list are NaN. */
VX_API int VX_CALL vx_recording_read_scaled(vx_recording* recording, int32_t well, int64_t from, int64_t to,
                                            double* values, int64_t* count);

/* What a selection holds of one well. */
typedef struct vx_selected_well {
    int64_t size;
    int64_t samples;  /* Number of samples. */
    int64_t missing;  /* How many of them are beyond the end of a cut file, and are read as 0. */
    int64_t first;    /* Where they begin in the buffer of vx_selection_read: samples of the wells before. */
    int64_t runs;     /* Number of runs. */
    int32_t well;     /* Its ID. */
    int32_t reserved; /* 0 */
} vx_selected_well;
#define VX_SELECTED_WELL_INIT \
    { sizeof(vx_selected_well), 0, 0, 0, 0, 0, 0 }

/* Samples that follow each other without a gap: sample i has the time time_from + i x interval. This struct never
 * grows, so that arrays of it can be passed. */
typedef struct vx_run {
    int64_t time_from;
    int64_t interval;
    int64_t samples;
    int64_t first; /* Samples of the same well before this run. */
} vx_run;

/* Selects the samples of some wells with times from `from` to `to`. Doesn't read samples. With `well_count` 0, selects
 * all wells, and `wells` may be NULL. A well that is named twice counts once. */
VX_API int VX_CALL vx_recording_select(vx_selection** out, vx_recording* recording, const int32_t* wells,
                                       int64_t well_count, int64_t from, int64_t to);
/* Returns the number of wells, which have the order of the request or of vx_recording_get_wells. */
VX_API int VX_CALL vx_selection_get_well_count(vx_selection* selection, int64_t* count);
VX_API int VX_CALL vx_selection_get_well(vx_selection* selection, int64_t index, vx_selected_well* well);
/* Returns the runs of a well, in the order of the file. If a run begins before the one ahead of it ended, they overlap.
 */
VX_API int VX_CALL vx_selection_get_runs(vx_selection* selection, int64_t index, vx_run* runs, int64_t* count);
/* Reads all samples, one well after the other, in one pass along the file. */
VX_API int VX_CALL vx_selection_read(vx_selection* selection, uint16_t* samples, int64_t* count);
/* Does the same with values in physical units. Those of a well that the header doesn't list are NaN. */
VX_API int VX_CALL vx_selection_read_scaled(vx_selection* selection, double* values, int64_t* count);

/* In place of a well: all of them. */
#define VX_ALL_WELLS (-1)

/* Opens a finished recording to read its segments one after the other: those of `only_well`, or all with VX_ALL_WELLS.
 * Returns at once, whereas vx_recording_open first reads the headers of all segments. It is not an error if the well
 * has no segments. VX_ERROR_FILE if the recording isn't finished. */
VX_API int VX_CALL vx_segments_open(vx_segments** out, vx_raw* raw, int64_t index, int32_t only_well);
/* Returns the next segment and its samples; those beyond the end of a cut file are 0. If `samples` is NULL or too
 * small, the next call returns the same segment, even if it has no samples. VX_END after the last one. VX_ERROR_FILE if
 * the next one is damaged; every further call then fails in the same way. */
VX_API int VX_CALL vx_segments_next(vx_segments* segments, vx_segment_info* info, uint16_t* samples, int64_t* count);

/* ---- Writing raw data -------------------------------------------------------------------------------------------- */

/* What to do if there is a file of that name. */
enum vx_create_mode {
    VX_CREATE_NEW = 0,    /* Fail and leave it as it is. */
    VX_CREATE_REPLACE = 1 /* Empty it. */
};

/* The header of a file. Texts that are NULL are empty. */
typedef struct vx_file_header {
    int64_t size;
    const char* header_id; /* NULL: the mark that readers expect, "OVL Vexaprobe". */
    const char* file_type;
    const char* program_version;
    const char* guid;
    const char* plate_id;
    const char* compound_name;
    int32_t file_version; /* 0: the newest. */
    int32_t compound_id;
} vx_file_header;
#define VX_FILE_HEADER_INIT \
    { sizeof(vx_file_header), 0, 0, 0, 0, 0, 0, 0, 0 }

/* The header of a recording. */
typedef struct vx_recording_header {
    int64_t size;
    const char* task; /* The task that makes it, such as "Series"; not NULL. */
    int64_t dose;
    uint64_t start_time;
    int64_t recording_time; /* Its length. */
    int32_t number;         /* Its number within its task. */
    int32_t reserved;       /* 0 */
} vx_recording_header;
#define VX_RECORDING_HEADER_INIT \
    { sizeof(vx_recording_header), 0, 0, 0, 0, 0, 0 }

/* Creates a raw data file. `mode` is one of vx_create_mode. Call in this order: vx_writer_write_file_header, then for
 * each recording vx_writer_begin_recording and any number of vx_writer_write, then vx_writer_finish.
 *
 * VX_ERROR_REFUSED: a value or the order of calls is wrong; nothing was written, and the writer stays usable.
 * VX_ERROR_WRITE: the call was made, but there is something new in vx_writer_get_report. A segment that the system
 * refused is left out, the file stays valid, and the next call tries again. VX_OK: the report has nothing new, though
 * the system may still refuse what it refused before; vx_writer_finish says whether the file is complete. */
VX_API int VX_CALL vx_writer_create(vx_writer** out, const char* path, int32_t mode);
/* Makes the writer refuse everything that a check of the file would report later, or stops that. */
VX_API int VX_CALL vx_writer_set_strict(vx_writer* writer, int32_t is_strict);
VX_API int VX_CALL vx_writer_write_file_header(vx_writer* writer, const vx_file_header* header);
/* Finishes the recording before, and begins one with `count` wells: element i of each array belongs to one well. */
VX_API int VX_CALL vx_writer_begin_recording(vx_writer* writer, const vx_recording_header* header, const int32_t* wells,
                                             const int32_t* ad_zeros, const double* units_per_ad,
                                             const int64_t* intervals, int64_t count);
/* Appends one segment: `count` samples of a well from `time_from` to `time_to`. `count` must be
 * (time_to - time_from) / interval + 1. The samples are with the operating system when the call returns. */
VX_API int VX_CALL vx_writer_write(vx_writer* writer, int32_t well, int64_t time_from, int64_t time_to,
                                   int64_t interval, const uint16_t* samples, int64_t count);
/* Replaces a list of the file header; `list` is one of vx_raw_list. */
VX_API int VX_CALL vx_writer_set_list(vx_writer* writer, int32_t list, const int64_t* values, int64_t count);
/* Waits until the disk has everything written so far. VX_ERROR_WRITE if it wouldn't survive a power cut. */
VX_API int VX_CALL vx_writer_flush_to_disk(vx_writer* writer);
/* Finishes the last recording and the file. VX_ERROR_WRITE if vx_writer_get_report isn't empty. Later calls that write
 * or flush return VX_ERROR_REFUSED. It is not an error if the file has no recording, not even of a strict writer;
 * vx_raw_open fails for such a file. */
VX_API int VX_CALL vx_writer_finish(vx_writer* writer);
/* Returns what the system refused so far, and which values readers can't use; empty if the file is as it should be. */
VX_API int VX_CALL vx_writer_get_report(vx_writer* writer, char* buffer, int64_t* size);

/* ---- Planning a recording ---------------------------------------------------------------------------------------- */

typedef struct vx_plan vx_plan; /* Whether a recording fits its header. */

typedef struct vx_plan_result {
    int64_t size;
    int64_t wells;          /* Number of wells of the recording. */
    int64_t wells_that_fit; /* How many of them fit, from the first on. */
    int64_t cells;          /* Number of cells with values of the caller. */
    int32_t fits;           /* Whether a strict writer takes the header. */
    int32_t reserved;       /* 0 */
} vx_plan_result;
#define VX_PLAN_RESULT_INIT \
    { sizeof(vx_plan_result), 0, 0, 0, 0, 0 }

/* One cell of a recording header. */
typedef struct vx_plan_cell {
    int64_t size;
    int64_t room;           /* Bytes for the value. */
    int64_t needed;         /* Bytes of the value. */
    int64_t wells_that_fit; /* How many wells it can list; if it isn't a list, all or none. */
    int32_t is_list;        /* Whether it has an item per well. */
    int32_t reserved;       /* 0 */
} vx_plan_cell;
#define VX_PLAN_CELL_INIT \
    { sizeof(vx_plan_cell), 0, 0, 0, 0, 0 }

/* Checks a recording before anything is recorded. The arguments are those of vx_writer_begin_recording; `file_version`
 * is that of the file, and 0 is the newest. */
VX_API int VX_CALL vx_plan_check(vx_plan** out, const vx_recording_header* header, const int32_t* wells,
                                 const int32_t* ad_zeros, const double* units_per_ad, const int64_t* intervals,
                                 int64_t count, int32_t file_version);
VX_API int VX_CALL vx_plan_get_result(vx_plan* plan, vx_plan_result* result);
/* Returns a sentence about what doesn't fit or is refused; empty if the recording fits. */
VX_API int VX_CALL vx_plan_get_text(vx_plan* plan, char* buffer, int64_t* size);
/* Returns the number of wells of each recording if the wells are split into as few as possible. One entry if all fit,
 * none if no split helps. */
VX_API int VX_CALL vx_plan_get_split(vx_plan* plan, int64_t* wells, int64_t* count);
VX_API int VX_CALL vx_plan_get_cell(vx_plan* plan, int64_t index, vx_plan_cell* cell);
/* Returns the key of a cell, such as "ADZeros". */
VX_API int VX_CALL vx_plan_get_key(vx_plan* plan, int64_t index, char* buffer, int64_t* size);

/* ---- Settings and results ---------------------------------------------------------------------------------------- */

typedef struct vx_document vx_document; /* The content of a settings or results file. */

enum vx_document_kind { VX_SETTINGS = 0, VX_RESULTS = 1 };

/* What is at a path. */
enum vx_type {
    VX_TYPE_OBJECT = 0,    /* Values that have names. */
    VX_TYPE_LIST = 1,      /* Entries that have numbers, from 0. */
    VX_TYPE_MAP = 2,       /* Entries that have keys: numbers, such as well IDs, or words, such as tasks. */
    VX_TYPE_TEXT = 3,      /* Any bytes. */
    VX_TYPE_WORD = 4,      /* A word of an enumeration; as a number, its number. */
    VX_TYPE_CHARACTER = 5, /* A text of at most one byte. */
    VX_TYPE_BOOL = 6,      /* 0 or 1. */
    VX_TYPE_INTEGER = 7,
    VX_TYPE_DOUBLE = 8
};

/* Paths name every value of a document. They are names, numbers and keys with a slash between them, for example
 *
 *   Header/CompoundName                                          (both kinds)
 *   Tasks/Series/Recordings/3/Wells/11/FPfastMaxAmp              (results)
 *   Tasks/Series/Recordings/3/Wells/11/Responses/QT-Interval/Value
 *   PropertyRecording/Tick                                       (settings)
 *   PropertyRecordPlate/Compounds/0/Label
 *   PropertyAnalyzer/AnalyzeSettings/Tasks/Series/Recordings/0/Wells/11/Analyze
 *
 * The empty path is the document. The names are those of the elements in the files, which docs/settings-file.md and
 * docs/results-file.md describe with their units. Every value can be found from the top with vx_document_get_type,
 * vx_document_get_count and vx_document_get_name. VX_ERROR_NOT_FOUND if there is nothing at a path.
 *
 * Two rules of the files: a well without FPfastDetectionTimes is stored without its averages, findings and responses,
 * and the eight FPfast values after FPfastDetected are stored only if that is true. */

/* Makes a document with the defaults of its kind. */
VX_API int VX_CALL vx_document_create(vx_document** out, int32_t kind);
/* Reads a file. VX_DAMAGED if something in it isn't as it should be; the document then holds what could be read and can
 * be used, and vx_document_get_faults has the rest. */
VX_API int VX_CALL vx_document_open(vx_document** out, int32_t kind, const char* path);
/* Returns sentences about what was wrong with the file; empty if nothing was. */
VX_API int VX_CALL vx_document_get_faults(vx_document* document, char* buffer, int64_t* size);
/* Writes a file, or replaces it once the new one is whole. Settings hold one compound and the marks of its active
 * wells: that at the index `compound` of the plate's list, or the first one with all active wells for -1. For results,
 * `compound` is -1. A settings file gets the current time as PropertyAnalyzer/AnalyzingDate; the document keeps its
 * own. VX_ERROR_FILE if the new file can't be created, VX_ERROR_WRITE if the system refused something else; the old
 * file is unchanged then. Also VX_ERROR_WRITE if a text has a NUL; the new file has the text up to there. */
VX_API int VX_CALL vx_document_save(vx_document* document, const char* path, int32_t compound);

/* Returns what is at a path: one of vx_type. */
VX_API int VX_CALL vx_document_get_type(vx_document* document, const char* path, int32_t* type);
/* Returns the number of children of an object, a list or a map. */
VX_API int VX_CALL vx_document_get_count(vx_document* document, const char* path, int64_t* count);
/* Returns the name of a child, which continues the path. */
VX_API int VX_CALL vx_document_get_name(vx_document* document, const char* path, int64_t index, char* buffer,
                                        int64_t* size);

/* Returns a single value as a text. A number reads back as the same number. */
VX_API int VX_CALL vx_document_get_text(vx_document* document, const char* path, char* buffer, int64_t* size);
VX_API int VX_CALL vx_document_set_text(vx_document* document, const char* path, const char* text);
/* Returns a whole number, a bool or the number of a word. VX_ERROR_VALUE if it is above 2^63 - 1; its text has it. */
VX_API int VX_CALL vx_document_get_int64(vx_document* document, const char* path, int64_t* value);
VX_API int VX_CALL vx_document_set_int64(vx_document* document, const char* path, int64_t value);
VX_API int VX_CALL vx_document_get_double(vx_document* document, const char* path, double* value);
VX_API int VX_CALL vx_document_set_double(vx_document* document, const char* path, double value);
/* Returns or replaces all entries of a list of numbers, such as FPfastDetectionTimes or Average. */
VX_API int VX_CALL vx_document_get_int64s(vx_document* document, const char* path, int64_t* values, int64_t* count);
VX_API int VX_CALL vx_document_set_int64s(vx_document* document, const char* path, const int64_t* values,
                                          int64_t count);
VX_API int VX_CALL vx_document_get_doubles(vx_document* document, const char* path, double* values, int64_t* count);
VX_API int VX_CALL vx_document_set_doubles(vx_document* document, const char* path, const double* values,
                                           int64_t count);
/* Makes an entry with default values: in a map under its key, in a list at its end, where the name must be the number
 * of entries so far. It is not an error if there is one already; that stays. */
VX_API int VX_CALL vx_document_insert(vx_document* document, const char* path);
/* Removes an entry of a list or map. */
VX_API int VX_CALL vx_document_remove(vx_document* document, const char* path);

/* Writes the results of the task "Series" as workbooks: one at `path`, and one beside it for each well in the state
 * "new" of the settings' plate. VX_ERROR_WRITE if any wasn't written; the error has a line for each. */
VX_API int VX_CALL vx_export(vx_document* results, vx_document* settings, const char* path);

typedef struct vx_table vx_table; /* Values of results as columns. */

/* All tables begin with task, recording, dose, dose_text; all but means go on with well, label. */
enum vx_table_kind {
    VX_TABLE_RESPONSES = 0, /* response, value, normalized */
    VX_TABLE_MEANS = 1,     /* response, mean, sd, wells */
    VX_TABLE_BEATS = 2,     /* beat, time, interval */
    VX_TABLE_AVERAGES = 3   /* sample, time, value */
};

/* In place of a whole number that is missing: the interval of the first beat. */
#define VX_MISSING INT64_MIN

/* Makes a table of all tasks, recordings and wells, with one row per value. Its columns are those of `vxfile table`,
 * and its texts are UTF-8. Later changes of the document don't change it. Doses above 2^63 - 1 become that number.
 * Later versions may add columns at the end. */
VX_API int VX_CALL vx_table_open(vx_table** out, vx_document* results, int32_t table);
VX_API int VX_CALL vx_table_get_size(vx_table* table, int64_t* rows, int64_t* columns);
VX_API int VX_CALL vx_table_get_name(vx_table* table, int64_t column, char* buffer, int64_t* size);
/* Returns the type of a column: VX_TYPE_INTEGER, VX_TYPE_DOUBLE or VX_TYPE_TEXT. */
VX_API int VX_CALL vx_table_get_type(vx_table* table, int64_t column, int32_t* type);
VX_API int VX_CALL vx_table_get_int64s(vx_table* table, int64_t column, int64_t* values, int64_t* count);
VX_API int VX_CALL vx_table_get_doubles(vx_table* table, int64_t column, double* values, int64_t* count);
VX_API int VX_CALL vx_table_get_text(vx_table* table, int64_t column, int64_t row, char* buffer, int64_t* size);

/* ---- Experimental ------------------------------------------------------------------------------------------------ */

/* These functions may change in any version. Define VX_EXPERIMENTAL to use them. */
#ifdef VX_EXPERIMENTAL

typedef struct vx_report vx_report; /* What was found in a file. */

enum vx_file_kind { VX_FILE_RAW = 0, VX_FILE_SETTINGS = 1, VX_FILE_RESULTS = 2, VX_FILE_WORKBOOK = 3 };

/* What long work calls, in the thread that called it. Each may be NULL. If one returns anything but 0, the work ends,
 * and its call returns VX_CANCELLED. No exception and no longjmp may leave a callback. */
typedef struct vx_callbacks {
    int64_t size;
    void* user; /* Passed on. */
    /* How much of `total` is done, in bytes. Called now and then. */
    int(VX_CALL* progress)(void* user, int64_t done, int64_t total);
    /* A finding: its offset in the file or -1, where it is, and what it means. The texts are valid during the call. */
    int(VX_CALL* finding)(void* user, int64_t offset, const char* where, const char* meaning);
} vx_callbacks;
#define VX_CALLBACKS_INIT \
    { sizeof(vx_callbacks), 0, 0, 0 }

typedef struct vx_recover_options {
    int64_t size;
    int32_t keep_cut; /* Keep a last segment that was cut, up to its last whole sample. */
    int32_t replace;  /* Replace the target if it exists; otherwise VX_ERROR_WRITE. */
} vx_recover_options;
#define VX_RECOVER_OPTIONS_INIT \
    { sizeof(vx_recover_options), 0, 0 }

typedef struct vx_report_summary {
    int64_t size;
    int64_t findings;  /* Number of findings. */
    int64_t kept;      /* How many of them vx_report_get_finding has: at most 1,000 of a check, 20,000 of a recovery. */
    int64_t bytes;     /* Size of the recovered file. */
    int32_t is_sound;  /* A check: nothing was found. A recovery: the new file has everything, without a doubt. */
    int32_t is_usable; /* A check: readers open the file. */
} vx_report_summary;
#define VX_REPORT_SUMMARY_INIT \
    { sizeof(vx_report_summary), 0, 0, 0, 0, 0 }

typedef struct vx_finding {
    int64_t size;
    int64_t offset; /* Bytes from the start of the file; -1 if it has no place. */
    int64_t end;    /* A recovery: offset of the byte after it. Otherwise -1. */
} vx_finding;
#define VX_FINDING_INIT \
    { sizeof(vx_finding), 0, 0 }

/* The texts of a finding. */
enum vx_finding_text {
    VX_FINDING_WHERE = 0,
    VX_FINDING_FOUND = 1,    /* What is there; of a recovery, "lost" or "in doubt". */
    VX_FINDING_EXPECTED = 2, /* What should be there; empty in a recovery. */
    VX_FINDING_MEANING = 3
};

/* Checks a file against everything that the format of its kind fixes. `kind` is one of vx_file_kind, whose numbers
 * aren't those of vx_document_kind. Findings are not a failure of the call. */
VX_API int VX_CALL vx_verify(vx_report** out, const char* path, int32_t kind, const vx_callbacks* callbacks);
/* Writes everything that is whole in an unfinished, cut or damaged raw data file to a new one. The source is only read.
 * VX_ERROR_FILE if there is nothing to save. If the call fails or is cancelled, the target is as it was. */
VX_API int VX_CALL vx_recover(vx_report** out, const char* source, const char* target,
                              const vx_recover_options* options, const vx_callbacks* callbacks);
VX_API int VX_CALL vx_report_get_summary(vx_report* report, vx_report_summary* summary);
VX_API int VX_CALL vx_report_get_finding(vx_report* report, int64_t index, vx_finding* finding);
/* Returns a text of a finding; `text` is one of vx_finding_text. */
VX_API int VX_CALL vx_report_get_text(vx_report* report, int64_t index, int32_t text, char* buffer, int64_t* size);

#endif /* VX_EXPERIMENTAL */

#ifdef __cplusplus
}
#endif

#endif
