/* Uses every function of the C interface, as C99 and as C++.
 *
 *   c_test REFERENCE_FOLDER SCRATCH_FOLDER
 *
 * Each phase prints its name. Ends with 1 if anything isn't as it should be. */
#if defined(__linux__)
#define _POSIX_C_SOURCE 200809L
#define _FILE_OFFSET_BITS 64
#include <sys/stat.h>
#include <unistd.h>
#endif

#include <inttypes.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define VX_EXPERIMENTAL
#include "capi/vxfileio.h"

static int failures;

static void expect(int is_right, const char* what, int line) {
    if (is_right) return;
    ++failures;
    printf("  line %d: not so: %s\n", line, what);
}
#define EXPECT(condition) expect((condition) ? 1 : 0, #condition, __LINE__)
#define WORKS(call) EXPECT((call) == VX_OK)

/* ---- Wrong arguments, made from the list of functions ---- */

#define STRAY ((void*)(uintptr_t)0x1234567890U)
#define ANY_FAILURE (-1)
static void* closed;
static int64_t eight, none, minus_one;
static double room[64];
static const char* texts = "no/such/file";

/* Fills an array like `room`. A 0 would hide that a call sets a number to 0, but the last byte ends it as a text. */
static void fill(double* array) {
    memset(array, 1, sizeof room);
    ((char*)array)[sizeof room - 1] = 0;
}

static void reset(void) {
    eight = 8;
    none = 0;
    minus_one = -1;
    fill(room);
}

static void* struct_of(int64_t size) {
    static union {
        int64_t size;
        char bytes[8192];
    } any[4]; /* a call can have several structs */
    static int next;
    next = (next + 1) % 4;
    memset(&any[next], 0, sizeof any[next]);
    any[next].size = size;
    return &any[next];
}

static void* struct_with_tail(int64_t known) {
    char* const any = (char*)struct_of(known + 8);
    any[known + 7] = 1;
    return any;
}

/* The call fails and changes nothing that its arguments point to. */
static void expect_wrong(int code, int expected, const char* function, const char* argument) {
    static double unchanged[sizeof room / sizeof *room];
    const int is_right = expected == ANY_FAILURE ? code != VX_OK && code != VX_ERROR_INTERNAL : code == expected;
    fill(unchanged);
    if (is_right && eight == 8 && minus_one == -1 && memcmp(room, unchanged, sizeof room) == 0) return;
    ++failures;
    printf("  %s, where %s: %d instead of %d, or a change\n", function, argument, code, expected);
}

#include "wrong_arguments.h"

/* A struct begins with its size, and the rest is 0. */
static void expect_initialised(const void* made, size_t size) {
    static const char zeros[4096] = "";
    int64_t first;
    memcpy(&first, made, sizeof first);
    EXPECT(first == (int64_t)size && memcmp((const char*)made + sizeof first, zeros, size - sizeof first) == 0);
}

/* From here on, calls are counted. */
#include "counted_calls.h"

/* ---- Helpers ---- */

static char reference[1000];
static char scratch[1000];

static const char* path_in(const char* folder, const char* name) {
    static char paths[4][2100];
    static int next;
    char* const path = paths[next++ % 4];
    snprintf(path, sizeof paths[0], "%s/%s", folder, name);
    return path;
}
static const char* given(const char* name) { return path_in(reference, name); }
static const char* own(const char* name) { return path_in(scratch, name); }

static int64_t content_of(const char* path, char* bytes, int64_t most) {
    FILE* const file = fopen(path, "rb");
    int64_t size = -1;
    if (file != NULL) {
        size = (int64_t)fread(bytes, 1, (size_t)most, file);
        fclose(file);
    }
    return size;
}

static int same_files(const char* a, const char* b) {
    static char first[100000], second[100000];
    const int64_t size = content_of(a, first, sizeof first);
    return size >= 0 && content_of(b, second, sizeof second) == size && memcmp(first, second, (size_t)size) == 0;
}

/* Returns the last error of a handle. */
static const char* error_of(const void* handle) {
    static char text[500];
    int64_t size = sizeof text;
    const int code = vx_last_error(handle, text, &size);
    EXPECT(code == VX_OK || code == VX_ERROR_SHORT_BUFFER);
    return text;
}

static vx_recording* open_recording(const char* name, int64_t index, const vx_recording_options* options) {
    vx_raw* raw = NULL;
    vx_recording* recording = NULL;
    WORKS(vx_raw_open(&raw, given(name)));
    WORKS(vx_recording_open(&recording, raw, index, options));
    WORKS(vx_close(raw)); /* the recording keeps the file open */
    return recording;
}

/* ---- Phases ---- */

static void read_headers(void) {
    vx_raw* raw = NULL;
    vx_raw_info info = VX_RAW_INFO_INIT;
    vx_recording_info recording = VX_RECORDING_INFO_INIT;
    char text[20];
    int64_t size = sizeof text, list[3], count = 3, index = -1;
    WORKS(vx_raw_open(&raw, given("several_recordings.vxd")));
    WORKS(vx_raw_get_info(raw, &info));
    EXPECT(info.recordings > 2 && info.file_version == 2 && info.compound_id == -7);
    WORKS(vx_raw_get_text(raw, VX_RAW_HEADER_ID, text, &size));
    EXPECT(strcmp(text, "OVL Vexaprobe 2") == 0 && size == 16);
    WORKS(vx_raw_get_list(raw, VX_RAW_COMPOUND_TEST, list, &count));
    EXPECT(count == 3 && list[1] == 1000000 && list[2] == INT64_MAX);
    WORKS(vx_raw_find_recording(raw, "CompoundTest", -3, &index));
    WORKS(vx_raw_get_recording(raw, index, &recording));
    EXPECT(index == 1 && recording.number == -3 && recording.dose == -1 && recording.wells == 2);
    EXPECT(recording.start_time == 1000000 && recording.recording_time == 300 && recording.is_finished == 1);
    size = sizeof text;
    WORKS(vx_raw_get_task(raw, 0, text, &size));
    EXPECT(strcmp(text, "PreQC") == 0);
    EXPECT(vx_raw_find_recording(raw, "CompoundTest", 77, &index) == VX_ERROR_NOT_FOUND && index == 1);
    EXPECT(strcmp(error_of(raw), "The file has no recording 77 of the task \"CompoundTest\".") == 0);
    WORKS(vx_close(raw));
}

static void read_samples(void) {
    vx_recording* const recording = open_recording("several_recordings.vxd", 0, NULL);
    vx_recording_state state = VX_RECORDING_STATE_INIT;
    vx_well_info well = VX_WELL_INFO_INIT;
    vx_segment_info segment = VX_SEGMENT_INFO_INIT;
    vx_selection* selection = NULL;
    vx_selected_well selected = VX_SELECTED_WELL_INIT;
    vx_run runs[2];
    int32_t wells[3];
    const int32_t chosen[] = {2, 1, 96}, unknown[] = {2, 3};
    uint16_t samples[8] = {0};
    double values[8];
    int64_t count = 3;
    WORKS(vx_recording_get_state(recording, &state));
    EXPECT(state.segments == 4 && state.wells == 3 && state.certain_samples == 7);
    WORKS(vx_recording_get_wells(recording, wells, &count));
    EXPECT(count == 3 && wells[0] == 1 && wells[2] == 96);
    WORKS(vx_recording_get_well(recording, 2, &well));
    EXPECT(well.well == 2 && well.interval == 50 && well.ad_zero == -32768 && fabs(well.units_per_ad - 1e-5) < 1e-12);
    WORKS(vx_recording_get_segment(recording, 3, &segment));
    EXPECT(segment.well == 2 && segment.samples == 1 && segment.time_from == 100 && segment.time_to == 149);
    count = -1; /* without an array, it doesn't matter */
    WORKS(vx_recording_read_segment(recording, 1, NULL, &count));
    EXPECT(count == 2);
    WORKS(vx_recording_read_segment(recording, 1, samples, &count));
    EXPECT(samples[0] == 4 && samples[1] == 5 && samples[2] == 0);
    count = 8;
    WORKS(vx_recording_read(recording, 1, 100, VX_TIME_LAST, samples, &count));
    EXPECT(count == 3 && samples[0] == 2 && samples[1] == 3 && samples[2] == 6);
    count = 8;
    WORKS(vx_recording_read_scaled(recording, 2, 0, 60, values, &count));
    EXPECT(count == 2 && fabs(values[0] - 32772e-5) < 1e-9);
    EXPECT(vx_recording_read(recording, 3, 0, 1, samples, &count) == VX_ERROR_NOT_FOUND);
    EXPECT(vx_recording_select(&selection, recording, unknown, 2, 0, 1) == VX_ERROR_NOT_FOUND);
    WORKS(vx_close(selection));
    WORKS(vx_recording_select(&selection, recording, chosen, 3, VX_TIME_FIRST, VX_TIME_LAST));
    WORKS(vx_close(recording)); /* the selection keeps it */
    WORKS(vx_selection_get_well_count(selection, &count));
    EXPECT(count == 3);
    WORKS(vx_selection_get_well(selection, 2, &selected));
    EXPECT(selected.well == 96 && selected.first == 7 && selected.samples == 0 && selected.runs == 0);
    WORKS(vx_selection_get_well(selection, 1, &selected));
    EXPECT(selected.well == 1 && selected.first == 3 && selected.samples == 4 && selected.missing == 0);
    EXPECT(selected.runs == 1);
    count = 2;
    WORKS(vx_selection_get_runs(selection, 1, runs, &count));
    EXPECT(count == 1 && runs[0].time_from == 0 && runs[0].interval == 100 && runs[0].samples == 4);
    count = 8;
    WORKS(vx_selection_read(selection, samples, &count));
    EXPECT(count == 7 && samples[2] == 65535 && samples[3] == 1 && samples[6] == 6);
    count = 8;
    WORKS(vx_selection_read_scaled(selection, values, &count));
    EXPECT(count == 7 && fabs(values[6] - (6 - 32768) * 0.0002) < 1e-9);
    WORKS(vx_close(selection));
}

static void read_a_cut_file(void) {
    vx_recording* const recording = open_recording("cut_samples.vxd", 0, NULL);
    vx_selection* selection = NULL;
    vx_selected_well selected = VX_SELECTED_WELL_INIT;
    const int32_t chosen[] = {12, 11};
    uint16_t samples[8] = {0};
    int64_t count = 8;
    WORKS(vx_recording_select(&selection, recording, chosen, 2, VX_TIME_FIRST, VX_TIME_LAST));
    WORKS(vx_selection_get_well(selection, 0, &selected));
    EXPECT(selected.well == 12 && selected.first == 0 && selected.samples == 4 && selected.missing == 3);
    WORKS(vx_selection_get_well(selection, 1, &selected));
    EXPECT(selected.well == 11 && selected.first == 4 && selected.samples == 4 && selected.missing == 0);
    WORKS(vx_selection_read(selection, samples, &count));
    EXPECT(count == 8 && samples[0] == 7 && samples[1] == 52 && samples[2] == 0 && samples[4] == 1);
    WORKS(vx_close(selection));
    WORKS(vx_recording_select(&selection, recording, chosen, 1, VX_TIME_FIRST, 99));
    WORKS(vx_selection_get_well(selection, 0, &selected));
    EXPECT(selected.samples == 1 && selected.missing == 0); /* this time comes before the cut */
    WORKS(vx_close(selection));
    WORKS(vx_close(recording));
}

static vx_segments* open_segments(const char* path, int64_t index, int32_t well, int expected) {
    vx_raw* raw = NULL;
    vx_segments* segments = NULL;
    WORKS(vx_raw_open(&raw, path));
    EXPECT(vx_segments_open(&segments, raw, index, well) == expected);
    WORKS(vx_close(raw));
    return segments;
}

static void read_segment_by_segment(void) {
    /* The segments of this file: well, time, samples. */
    static const int64_t expected[][3] = {{1, 0, 3}, {2, 0, 2}, {1, 300, 1}, {2, 100, 1}};
    static const int32_t wells[] = {VX_ALL_WELLS, 2, 96};
    vx_recording* const recording = open_recording("several_recordings.vxd", 0, NULL);
    vx_segments* segments;
    vx_segment_info segment = VX_SEGMENT_INFO_INIT;
    vx_segment_info numbered = VX_SEGMENT_INFO_INIT;
    uint16_t samples[3], again[3];
    int64_t count, number;
    size_t i;
    for (i = 0; i < 3; ++i) {
        segments = open_segments(given("several_recordings.vxd"), 0, wells[i], VX_OK);
        for (number = 0; number < 4; ++number) {
            if (wells[i] != VX_ALL_WELLS && expected[number][0] != wells[i]) continue;
            count = 0;
            WORKS(vx_segments_next(segments, &segment, NULL, &count));
            EXPECT(count == expected[number][2]);
            count = 0;
            EXPECT(vx_segments_next(segments, &segment, samples, &count) == VX_ERROR_SHORT_BUFFER);
            WORKS(vx_segments_next(segments, &segment, samples, &count));
            EXPECT(segment.well == expected[number][0] && segment.time_from == expected[number][1]);
            WORKS(vx_recording_get_segment(recording, number, &numbered));
            WORKS(vx_recording_read_segment(recording, number, again, &count));
            EXPECT(memcmp(&segment, &numbered, sizeof segment) == 0);
            EXPECT(count == segment.samples && memcmp(samples, again, (size_t)count * sizeof *samples) == 0);
        }
        count = 3;
        EXPECT(vx_segments_next(segments, &segment, samples, &count) == VX_END && count == 3);
        EXPECT(vx_segments_next(segments, &segment, samples, &count) == VX_END);
        WORKS(vx_close(segments));
    }
    WORKS(vx_close(recording));
    segments = open_segments(given("unfinished.vxd"), 1, VX_ALL_WELLS, VX_ERROR_FILE);
    EXPECT(strcmp(error_of(segments), "The recording isn't finished.") == 0);
    WORKS(vx_close(segments));
}

static void read_damaged_and_unfinished(void) {
    vx_recording_options options = VX_RECORDING_OPTIONS_INIT;
    vx_recording* recording = NULL;
    vx_raw *damaged = NULL, *unfinished = NULL;
    char text[100];
    int i;
    WORKS(vx_raw_open(&damaged, given("damaged_segments.vxd")));
    WORKS(vx_raw_open(&unfinished, given("unfinished.vxd")));
    for (i = 0; i < 4; ++i) { /* each option does its own, with and without the other */
        int64_t size = sizeof text;
        options.up_to_damage = -(i % 2); /* in some languages, true is -1 */
        options.unfinished = -(i / 2);
        EXPECT(vx_recording_open(&recording, damaged, 1, &options) == (options.up_to_damage ? VX_OK : VX_ERROR_FILE));
        EXPECT(vx_recording_get_damage(recording, text, &size) == (options.up_to_damage ? VX_OK : VX_ERROR_STATE));
        EXPECT(strcmp(options.up_to_damage ? text : error_of(recording), "Error reading Data Segment Header") == 0);
        WORKS(vx_close(recording));
        EXPECT(vx_recording_open(&recording, unfinished, 1, &options) == (options.unfinished ? VX_OK : VX_ERROR_FILE));
        EXPECT(strcmp(error_of(recording), options.unfinished ? "" : "The recording isn't finished.") == 0);
        WORKS(vx_close(recording));
    }
    WORKS(vx_close(damaged));
    WORKS(vx_close(unfinished));
}

static void report_a_failed_open(void) {
    vx_raw* raw = NULL;
    vx_raw_info info = VX_RAW_INFO_INIT;
    int32_t version = 0;
    char text[10];
    int64_t size = sizeof text;
    EXPECT(vx_raw_open(&raw, "no/such/file") == VX_ERROR_FILE && raw != NULL);
    EXPECT(strcmp(error_of(raw), "Cannot open file no/such/file") == 0);
    EXPECT(vx_last_error(raw, text, &size) == VX_ERROR_SHORT_BUFFER && size == 30 && strcmp(text, "Cannot op") == 0);
    EXPECT(vx_raw_get_info(raw, &info) == VX_ERROR_STATE);
    EXPECT(strcmp(error_of(raw), "Cannot open file no/such/file") == 0); /* still why it wasn't opened */
    WORKS(vx_close(raw));
    EXPECT(vx_close(raw) == VX_ERROR_HANDLE && vx_last_error(raw, text, &size) == VX_ERROR_HANDLE);
    WORKS(vx_close(NULL));
    WORKS(vx_get_version(&version));
    EXPECT(version == VX_VERSION);
    size = sizeof text;
    WORKS(vx_code_text(VX_OK, text, &size));
    EXPECT(strcmp(text, "Success") == 0 && vx_code_text(12345, text, &size) == VX_ERROR_NOT_FOUND);
    size = sizeof text;
    WORKS(vx_to_utf8("1\0\xB5M", 4, text, &size)); /* a NUL doesn't end the bytes */
    EXPECT(size == 6 && memcmp(text, "1\0\xC2\xB5M", 6) == 0);
}

/* The rule for sizes: a longer struct works, up to 4096 bytes. As a result it gets zeros, as an argument it must have
 * zeros. */
static void accept_structs_of_later_versions(void) {
    struct {
        vx_raw_info info;
        char later[4096 - sizeof(vx_raw_info)];
    } longer;
    struct {
        vx_recording_options options;
        int64_t later;
    } argument = {VX_RECORDING_OPTIONS_INIT, 0};
    vx_raw* raw = NULL;
    vx_recording* recording = NULL;
    memset(&longer, 0xFF, sizeof longer);
    longer.info.size = sizeof longer;
    WORKS(vx_raw_open(&raw, given("small_example.vxd")));
    WORKS(vx_raw_get_info(raw, &longer.info));
    EXPECT(longer.info.size == sizeof longer && longer.info.recordings == 1);
    EXPECT(longer.later[0] == 0 && longer.later[sizeof longer.later - 1] == 0);
    longer.info.size = sizeof longer.info - 8;
    EXPECT(vx_raw_get_info(raw, &longer.info) == VX_ERROR_STRUCT);
    argument.options.size = sizeof argument;
    WORKS(vx_recording_open(&recording, raw, 0, &argument.options));
    WORKS(vx_close(recording));
    argument.later = 1;
    EXPECT(vx_recording_open(&recording, raw, 0, &argument.options) == VX_ERROR_STRUCT);
    EXPECT(strstr(error_of(recording), "this version of the library doesn't know") != NULL);
    WORKS(vx_close(recording));
    WORKS(vx_close(raw));
}

static vx_writer* begin_small_example(const char* path) {
    vx_writer* writer = NULL;
    vx_file_header file = VX_FILE_HEADER_INIT;
    vx_recording_header recording = VX_RECORDING_HEADER_INIT;
    const int32_t wells[] = {11, 12}, zeros[] = {32768, 32768};
    const double units[] = {0.0002, 0.0002};
    const int64_t intervals[] = {100, 100};
    file.file_type = "Raw";
    file.program_version = "1.0";
    file.guid = "0123";
    file.plate_id = "P1";
    file.compound_id = 5;
    file.compound_name = "Test";
    recording.task = "CompoundTest";
    recording.number = 1;
    recording.dose = 1000;
    recording.start_time = 1000000;
    recording.recording_time = 300;
    WORKS(vx_writer_create(&writer, path, VX_CREATE_REPLACE));
    WORKS(vx_writer_set_strict(writer, 1));
    WORKS(vx_writer_write_file_header(writer, &file));
    recording.reserved = 1;
    EXPECT(vx_writer_begin_recording(writer, &recording, wells, zeros, units, intervals, 2) == VX_ERROR_ARGUMENT);
    recording.reserved = 0;
    WORKS(vx_writer_begin_recording(writer, &recording, wells, zeros, units, intervals, 2));
    return writer;
}

/* Reads segments of all wells until a call fails. Returns how many there are, and the code of that call. */
static int count_segments(vx_segments* segments, vx_segment_info* last, uint16_t* samples, int* code) {
    int found = 0;
    int64_t count = 4;
    while ((*code = vx_segments_next(segments, last, samples, &count)) == VX_OK) {
        EXPECT(count == last->samples);
        count = 4;
        ++found;
    }
    return found;
}

/* After the last segment and after damage, every further call fails in the same way. */
static void end_segments(void) {
    static const struct {
        const char* file;
        int64_t recording;
        int segments, code;
        const char* error;
    } cases[] = {
        {"several_recordings.vxd", 0, 4, VX_END, "There are no more segments."},
        {"circle_of_segments.vxd", 0, 3, VX_ERROR_FILE, "Error reading Data Segment Header"},
        {"damaged_segments.vxd", 0, 0, VX_ERROR_FILE, "Error seeking Data Segment."},
        {"damaged_segments.vxd", 3, 1, VX_ERROR_FILE, "Error seeking Data Segment."},
        {"damaged_segments.vxd", 7, 0, VX_ERROR_FILE, "Error reading Data Segment Header"}, /* only its size is wrong */
        {"cut_samples.vxd", 0, 2, VX_END, "There are no more segments."},
    };
    uint16_t samples[4];
    int64_t count = 4;
    int code, again;
    size_t i;
    vx_segment_info segment = VX_SEGMENT_INFO_INIT;
    vx_segments* segments;
    WORKS(vx_close(begin_small_example(own("empty.vxd"))));
    segments = open_segments(own("empty.vxd"), 0, VX_ALL_WELLS, VX_OK);
    EXPECT(vx_segments_next(segments, &segment, NULL, &count) == VX_END);
    WORKS(vx_close(segments));
    for (i = 0; i < sizeof cases / sizeof *cases; ++i) {
        segments = open_segments(given(cases[i].file), cases[i].recording, VX_ALL_WELLS, VX_OK);
        EXPECT(count_segments(segments, &segment, samples, &code) == cases[i].segments && code == cases[i].code);
        EXPECT(count_segments(segments, &segment, samples, &again) == 0 && again == code);
        EXPECT(strcmp(error_of(segments), cases[i].error) == 0);
        WORKS(vx_close(segments));
    }
    EXPECT(segment.well == 12 && samples[0] == 7 && samples[1] == 0x34 && samples[2] == 0 && samples[3] == 0); /* cut */
}

/* A segment without samples is passed only by a call with an array. */
static void pass_an_empty_segment(void) {
    static char bytes[10000];
    const int64_t size = content_of(given("small_example.vxd"), bytes, sizeof bytes);
    FILE* const file = fopen(own("gap.vxd"), "wb");
    uint16_t samples[4];
    int64_t count, at = 0;
    int i;
    vx_segment_info segment = VX_SEGMENT_INFO_INIT;
    vx_segments* segments;
    while (at < size && memcmp(bytes + at, "Size=4", 6) != 0)
        ++at;
    bytes[at + 5] = '0';
    EXPECT(file != NULL && fwrite(bytes, 1, (size_t)size, file) == (size_t)size && fclose(file) == 0);
    segments = open_segments(own("gap.vxd"), 0, VX_ALL_WELLS, VX_OK);
    for (i = 0; i < 3; ++i) {
        count = 0;
        WORKS(vx_segments_next(segments, &segment, i < 2 ? NULL : samples, &count));
        EXPECT(segment.well == 11 && segment.samples == 0 && count == 0);
    }
    WORKS(vx_segments_next(segments, &segment, NULL, &count));
    EXPECT(segment.well == 12 && count == 4);
    WORKS(vx_close(segments));
}

#if defined(__linux__)
/* The segments come from the file that was opened, even if its name now belongs to another file. */
static void read_a_renamed_file(void) {
    uint16_t samples[4];
    int64_t count = 4;
    vx_segment_info segment = VX_SEGMENT_INFO_INIT;
    vx_raw* raw = NULL;
    vx_segments* segments = NULL;
    vx_writer* writer = begin_small_example(own("renamed.vxd"));
    const uint16_t first[] = {1, 256, 65535, 32768};
    WORKS(vx_writer_write(writer, 11, 0, 300, 100, first, 4));
    WORKS(vx_close(writer));
    WORKS(vx_raw_open(&raw, own("renamed.vxd")));
    EXPECT(rename(own("renamed.vxd"), own("renamed_away.vxd")) == 0);
    WORKS(vx_close(begin_small_example(own("renamed.vxd"))));
    WORKS(vx_segments_open(&segments, raw, 0, 11));
    WORKS(vx_close(raw)); /* the segments keep the file open */
    WORKS(vx_segments_next(segments, &segment, samples, &count));
    EXPECT(count == 4 && memcmp(samples, first, sizeof first) == 0);
    EXPECT(vx_segments_next(segments, &segment, samples, &count) == VX_END);
    WORKS(vx_close(segments));
}
#endif

/* Writes the reference file byte for byte. */
static void write_raw_data(void) {
    const char* const path = own("written.vxd");
    vx_writer* writer = begin_small_example(path);
    const uint16_t first[] = {1, 256, 65535, 32768}, second[] = {7, 8, 9, 10};
    const int64_t list[] = {1000, 2000}, limits[] = {INT64_MAX, INT64_MIN};
    char text[100];
    int64_t size = sizeof text, kept[2], count = 2;
    vx_raw* raw = NULL;
    WORKS(vx_writer_write(writer, 11, 0, 300, 100, first, 4));
    EXPECT(vx_writer_write(writer, 12, 0, 300, 100, second, 3) == VX_ERROR_ARGUMENT);
    EXPECT(vx_writer_write(writer, 12, 300, 300, 100, second, 4) == VX_ERROR_ARGUMENT);
    EXPECT(vx_writer_write(writer, 12, INT64_MIN, INT64_MAX, 1, NULL, 0) == VX_ERROR_ARGUMENT);
    EXPECT(vx_writer_write(writer, 12, 0, 300, 0, second, 4) == VX_ERROR_REFUSED);
    EXPECT(vx_writer_write(writer, 13, 0, 300, 100, second, 4) == VX_ERROR_REFUSED);
    EXPECT(strstr(error_of(writer), "13") != NULL);
    WORKS(vx_writer_write(writer, 12, 0, 300, 100, second, 4));
    WORKS(vx_writer_set_list(writer, VX_RAW_COMPOUND_TEST, list, 2));
    WORKS(vx_writer_flush_to_disk(writer));
    WORKS(vx_writer_finish(writer));
    WORKS(vx_writer_get_report(writer, text, &size));
    EXPECT(size == 1);
    EXPECT(vx_writer_write(writer, 11, 400, 400, 100, first, 1) == VX_ERROR_REFUSED);
    EXPECT(vx_writer_flush_to_disk(writer) == VX_ERROR_REFUSED);
    WORKS(vx_close(writer));
    EXPECT(same_files(path, given("small_example.vxd")));
    EXPECT(vx_writer_create(&writer, path, VX_CREATE_NEW) == VX_ERROR_FILE);
    WORKS(vx_close(writer));
    EXPECT(vx_writer_create(&writer, path, VX_CREATE_REPLACE + 1) == VX_ERROR_ARGUMENT);
    WORKS(vx_close(writer));
    writer = begin_small_example(own("lists.vxd"));
    WORKS(vx_writer_set_list(writer, VX_RAW_POST_QC, limits, 2));
    WORKS(vx_writer_set_list(writer, VX_RAW_COMPOUND_TEST, list, 2));
    WORKS(vx_writer_set_list(writer, VX_RAW_COMPOUND_TEST, NULL, 0));
    WORKS(vx_close(writer));
    WORKS(vx_raw_open(&raw, own("lists.vxd")));
    WORKS(vx_raw_get_list(raw, VX_RAW_POST_QC, kept, &count));
    EXPECT(count == 2 && memcmp(kept, limits, sizeof limits) == 0);
    WORKS(vx_raw_get_list(raw, VX_RAW_COMPOUND_TEST, kept, &count));
    EXPECT(count == 0);
    WORKS(vx_close(raw));
}

#if defined(_WIN32)
/* A path in UTF-8 is a file of that name, in every language of Windows. */
static void take_paths_as_utf8(void) {
    const char* const path = "\xE6\xB8\xAC-\xC3\xA4.vxd";
    const wchar_t* const name = L"\x6E2C-\xE4.vxd";
    vx_raw* raw = NULL;
    WORKS(vx_close(begin_small_example(path)));
    WORKS(vx_raw_open(&raw, path));
    WORKS(vx_close(raw));
    EXPECT(_wremove(name) == 0);
    EXPECT(vx_raw_open(&raw, path) == VX_ERROR_FILE && strstr(error_of(raw), path) != NULL);
    WORKS(vx_close(raw));
}
#endif

#if defined(__linux__)
/* The system refuses every byte. */
static void report_a_full_disk(void) {
    const int64_t dose = 1000, tick = 1;
    const int32_t well = 1, zero = 0;
    const double unit = 1;
    const uint16_t sample = 1;
    vx_writer* writer = NULL;
    vx_document* document = NULL;
    int32_t kind;
    vx_file_header file = VX_FILE_HEADER_INIT;
    vx_recording_header recording = VX_RECORDING_HEADER_INIT;
    WORKS(vx_writer_create(&writer, "/dev/full", VX_CREATE_REPLACE));
    EXPECT(vx_writer_write_file_header(writer, &file) == VX_ERROR_WRITE);
    EXPECT(strstr(error_of(writer), "No space left on device") != NULL);
    WORKS(vx_writer_set_list(writer, VX_RAW_PRE_QC, &dose, 1)); /* nothing new */
    WORKS(vx_writer_set_strict(writer, 0));
    recording.task = "Series";
    WORKS(vx_writer_begin_recording(writer, &recording, &well, &zero, &unit, &tick, 1));
    WORKS(vx_writer_set_strict(writer, 1));
    EXPECT(vx_writer_write(writer, 1, 0, 0, 1, &sample, 1) == VX_ERROR_WRITE);
    EXPECT(strstr(error_of(writer), "segments missing: 1") != NULL);
    /* What isn't in the file doesn't overlap. The report changes, but not its length. */
    EXPECT(vx_writer_write(writer, 1, 0, 0, 1, &sample, 1) == VX_ERROR_WRITE);
    EXPECT(strstr(error_of(writer), "segments missing: 2") != NULL);
    EXPECT(vx_writer_finish(writer) == VX_ERROR_WRITE);
    EXPECT(vx_close(writer) == VX_ERROR_WRITE);
    EXPECT(vx_close(writer) == VX_ERROR_HANDLE);
    for (kind = VX_SETTINGS; kind <= VX_RESULTS; ++kind) {
        WORKS(vx_document_create(&document, kind));
        EXPECT(vx_document_save(document, "/dev/full", -1) == VX_ERROR_WRITE);
        EXPECT(strstr(error_of(document), "No space left on device") != NULL);
        WORKS(vx_close(document));
    }
}
#endif

/* ---- Settings and results ---- */

static vx_document* open_document(int32_t kind, const char* name) {
    vx_document* document = NULL;
    WORKS(vx_document_open(&document, kind, given(name)));
    return document;
}

static int64_t whole_at(vx_document* document, const char* path) {
    int64_t value = -12345;
    EXPECT(vx_document_get_int64(document, path, &value) == VX_OK);
    return value;
}

static int text_is(vx_document* document, const char* path, const char* expected) {
    char text[200];
    int64_t size = sizeof text;
    const int code = vx_document_get_text(document, path, text, &size);
    if (code != VX_OK) printf("  %s: %s\n", path, error_of(document));
    return code == VX_OK && strcmp(text, expected) == 0;
}

static void read_results(void) {
    vx_document* const results = open_document(VX_RESULTS, "xml/results.vxr");
    const char* const well = "Tasks/Analyze/Recordings/0/Wells/64";
    char path[100], text[100];
    double value = 0, average[7];
    int64_t count = 7, size = sizeof text, times[2];
    int32_t type = 0;
    EXPECT(text_is(results, "Header/CompoundName", "C1"));
    EXPECT(whole_at(results, "Tasks/Analyze/Recordings/0/Dose") == 1000000);
    WORKS(vx_document_get_double(results, "Tasks/Analyze/Recordings/0/Wells/64/FPfastMaxAmp", &value));
    EXPECT(fabs(value - 0.123456789) < 1e-15);
    EXPECT(text_is(results, "Tasks/Analyze/Recordings/0/Wells/64/FPfastMaxAmp", "0.123456789"));
    EXPECT(text_is(results, "Tasks/Analyze/Recordings/0/Wells/64/FPmaxType", "PositivePeak"));
    EXPECT(whole_at(results, "Tasks/Analyze/Recordings/0/Wells/64/FPmaxType") == 1);
    EXPECT(text_is(results, "Tasks/Analyze/Recordings/0/Wells/64/Responses/Na-Amplitude/Value", "0.5"));
    EXPECT(text_is(results, "Tasks/Analyze/Recordings/0/NormalizedResponses/QT-Interval/Samples", "4294967295"));
    snprintf(path, sizeof path, "%s/FPfastDetectionTimes", well);
    count = 2;
    WORKS(vx_document_get_int64s(results, path, times, &count));
    EXPECT(count == 2 && times[0] == 1500 && times[1] == INT64_MIN);
    snprintf(path, sizeof path, "%s/Average", well);
    count = 7;
    WORKS(vx_document_get_doubles(results, path, average, &count));
    EXPECT(count == 7 && average[2] < -0.12 && average[5] > 1234569);
    WORKS(vx_document_get_type(results, path, &type));
    EXPECT(type == VX_TYPE_LIST);
    WORKS(vx_document_get_count(results, "Tasks/Analyze/Recordings/0/Wells", &count));
    WORKS(vx_document_get_name(results, "Tasks/Analyze/Recordings/0/Wells", 1, text, &size));
    EXPECT(count == 3 && strcmp(text, "64") == 0);
    snprintf(path, sizeof path, "%s/NormalizedResponses/NotDefined/Value", well);
    WORKS(vx_document_get_double(results, path, &value));
    snprintf(path, sizeof path, "%s/NormalizedResponses/notDefined/Value", well); /* doesn't mean NotDefined */
    EXPECT(vx_document_get_double(results, path, &value) == VX_ERROR_NOT_FOUND);
    EXPECT(vx_document_get_double(results, "Tasks/Analyze/Recordings/9", &value) == VX_ERROR_NOT_FOUND);
    EXPECT(strcmp(error_of(results),
                  "\"Tasks/Analyze/Recordings/9\" has nothing of the name \"9\" after "
                  "\"Tasks/Analyze/Recordings/\".") == 0);
    EXPECT(vx_document_get_int64(results, "Tasks/Analyze/Recordings/0/Wells/64/FPfastMaxAmp", &count) == VX_ERROR_TYPE);
    WORKS(vx_document_save(results, own("same.vxr"), -1));
    EXPECT(same_files(own("same.vxr"), given("xml/results.vxr")));
    WORKS(vx_close(results));
}

/* Every value can be found from the top. Returns the number of single values below a path. */
static int64_t walk(vx_document* document, const char* path) {
    char name[100], child[600], text[300];
    int32_t type = -1;
    int64_t count = 0, i, found = 0, size = sizeof text;
    WORKS(vx_document_get_type(document, path, &type));
    if (type > VX_TYPE_MAP) {
        WORKS(vx_document_get_text(document, path, text, &size));
        return 1;
    }
    WORKS(vx_document_get_count(document, path, &count));
    for (i = 0; i < count; ++i) {
        size = sizeof name;
        WORKS(vx_document_get_name(document, path, i, name, &size));
        snprintf(child, sizeof child, "%s%s%s", path, *path == '\0' ? "" : "/", name);
        found += walk(document, child);
    }
    return found;
}

static void change_settings(void) {
    vx_document* settings = open_document(VX_SETTINGS, "xml/settings.vxs");
    const char* const mark =
        "PropertyAnalyzer/AnalyzeSettings/Tasks/Series/Recordings/0/Wells/64/Responses/QT-Interval";
    const char* const analyzed = "PropertyAnalyzer/AnalyzingDate";
    const char* const copy = own("settings.vxs");
    const int64_t doses[] = {10, 20, 30}, wrong[] = {5, 6, -1};
    int64_t count = 3, kept[3];
    EXPECT(text_is(settings, mark, "Deselected"));
    EXPECT(text_is(settings, "PropertyRecordPlate/Compounds/0/Label", "C7"));
    EXPECT(text_is(settings, "Header/RecordingDate", "18446744073709551615"));
    EXPECT(vx_document_get_int64(settings, "Header/RecordingDate", &count) == VX_ERROR_VALUE);
    EXPECT(walk(settings, "") > 150);
    WORKS(vx_document_set_text(settings, mark, "Manually"));
    EXPECT(vx_document_set_text(settings, mark, "manually") == VX_ERROR_VALUE);
    EXPECT(strstr(error_of(settings), "/QT-Interval\": The value can't be \"manually\", only one of ") != NULL);
    EXPECT(strstr(error_of(settings), ", Manually, Deselected.") != NULL);
    WORKS(vx_document_set_int64(settings, "PropertyRecording/ADMax", 65535));
    EXPECT(vx_document_set_int64(settings, "PropertyRecording/ADMax", 65536) == VX_ERROR_VALUE);
    EXPECT(vx_document_set_double(settings, "PropertyRecording/ADMax", 1.0) == VX_ERROR_TYPE);
    WORKS(vx_document_set_double(settings, "PropertyRecording/VoltPerADStep", 0.1 + 0.2));
    EXPECT(text_is(settings, "PropertyRecording/VoltPerADStep", "0.30000000000000004")); /* 17 digits */
    WORKS(vx_document_set_double(settings, "PropertyRecording/VoltPerADStep", 0.25));
    WORKS(vx_document_set_text(settings, "PropertyRecordPlate/PlateID", "B"));
    WORKS(vx_document_set_text(settings, "PropertyNotebook/Comment", "third"));
    EXPECT(vx_document_set_text(settings, "PropertyRecordPlate/PlateID", "BB") == VX_ERROR_VALUE);
    WORKS(vx_document_set_int64s(settings, "PropertyRecordPlate/Series", doses, 3));
    EXPECT(vx_document_set_int64s(settings, "PropertyRecordPlate/Series", wrong, 3) == VX_ERROR_VALUE);
    EXPECT(vx_document_get_int64(settings, "PropertyRecordPlate/Series/00", &count) == VX_ERROR_NOT_FOUND);
    WORKS(vx_document_get_int64s(settings, "PropertyRecordPlate/Series", kept, &count));
    EXPECT(count == 3 && memcmp(kept, doses, sizeof doses) == 0); /* none of a list that is refused */
    EXPECT(vx_document_set_int64s(settings, "PropertyRecordPlate/Compounds", NULL, 0) == VX_ERROR_TYPE);
    WORKS(vx_document_insert(settings, "PropertyRecordPlate/Compounds/1"));
    EXPECT(text_is(settings, "PropertyRecordPlate/Compounds/1/Label", ""));
    WORKS(vx_document_insert(settings, "PropertyRecordPlate/Compounds/2"));
    WORKS(vx_document_insert(settings, "PropertyRecordPlate/Compounds/3"));
    WORKS(vx_document_set_text(settings, "PropertyRecordPlate/Compounds/2/Label", "two"));
    WORKS(vx_document_remove(settings, "PropertyRecordPlate/Compounds/1"));
    EXPECT(text_is(settings, "PropertyRecordPlate/Compounds/1/Label", "two")); /* the others keep their order */
    EXPECT(text_is(settings, "PropertyRecordPlate/Compounds/2/Label", ""));
    WORKS(vx_document_remove(settings, "PropertyRecordPlate/Compounds/2"));
    WORKS(vx_document_remove(settings, "PropertyRecordPlate/Compounds/1"));
    WORKS(vx_document_get_count(settings, "PropertyRecordPlate/Compounds", &count));
    EXPECT(count == 1 && text_is(settings, "PropertyRecordPlate/Compounds/0/Label", "C7"));
    EXPECT(vx_document_set_int64(settings, "PropertyAnalyzer/FPfastAutoAdjust", 2) == VX_ERROR_VALUE);
    EXPECT(vx_document_set_int64(settings, mark, -1) == VX_ERROR_VALUE);
    EXPECT(vx_document_set_int64(settings, mark, 4) == VX_ERROR_VALUE); /* there are four marks */
    WORKS(vx_document_remove(settings, "PropertyQualityCheck/QualityChecks/PostQC"));
    EXPECT(vx_document_remove(settings, "PropertyQualityCheck/QualityChecks/PostQC") == VX_ERROR_NOT_FOUND);
    WORKS(vx_document_save(settings, copy, -1));
    EXPECT(text_is(settings, analyzed, "133512191990000000"));
    EXPECT(vx_document_save(settings, copy, 99) == VX_ERROR_ARGUMENT);
    EXPECT(vx_document_save(settings, own("no/such/folder.vxs"), -1) == VX_ERROR_FILE);
    WORKS(vx_close(settings));

    WORKS(vx_document_open(&settings, VX_SETTINGS, copy));
    EXPECT(text_is(settings, mark, "Manually") && text_is(settings, "PropertyRecording/VoltPerADStep", "0.25"));
    EXPECT(text_is(settings, "PropertyNotebook/Comment", "third"));
    EXPECT(whole_at(settings, "PropertyRecordPlate/Series/2") == 30);
    EXPECT(whole_at(settings, analyzed) > 133512191990000000);
    WORKS(vx_document_get_count(settings, "PropertyQualityCheck/QualityChecks", &count));
    EXPECT(count == 1);
    WORKS(vx_close(settings));

    WORKS(vx_document_create(&settings, VX_SETTINGS));
    WORKS(vx_document_save(settings, copy, -1));
    WORKS(vx_close(settings));
    WORKS(vx_document_open(&settings, VX_SETTINGS, copy));
    EXPECT(text_is(settings, "Header/FileType", "VXSettings"));
    WORKS(vx_close(settings));
}

static void make_results(void) {
    const char* const entries[] = {"Tasks/Series",
                                   "Tasks/Series/Recordings/0",
                                   "Tasks/Series/Recordings/0/Wells/11",
                                   "Tasks/Series/Recordings/0/Wells/11/Responses/Na-Slope",
                                   "Tasks/Series/Recordings/0/NormalizedResponses/QT-Interval",
                                   "Tasks/Analyze",
                                   "Tasks/Analyze/Recordings/0",
                                   "Tasks/Analyze/Recordings/0/NormalizedResponses/QT-Interval"};
    const double average[] = {1.5, -2.5};
    const int64_t beats[] = {100, 250};
    vx_document* results = NULL;
    vx_table* table = NULL;
    char text[30];
    double values[4];
    int64_t rows = 0, columns = 0, wholes[4], count = 4, size = sizeof text;
    int32_t type = 0;
    size_t i;
    WORKS(vx_document_create(&results, VX_RESULTS));
    for (i = 0; i < sizeof entries / sizeof *entries; ++i)
        WORKS(vx_document_insert(results, entries[i]));
    EXPECT(vx_document_insert(results, "Tasks/Serious") == VX_ERROR_VALUE);
    EXPECT(vx_document_insert(results, "Tasks/Series/Recordings/5") == VX_ERROR_VALUE);
    EXPECT(text_is(results, "Tasks/Series/TaskName", "Series"));
    WORKS(vx_document_set_text(results, "Tasks/Series/Recordings/0/Dose", "18446744073709551615"));
    EXPECT(vx_document_set_text(results, "Tasks/Series/Recordings/0/Dose", "-1") == VX_ERROR_VALUE);
    EXPECT(vx_document_set_text(results, "Tasks/Series/Recordings/0/Dose", "18446744073709551616") == VX_ERROR_VALUE);
    WORKS(vx_table_open(&table, results, VX_TABLE_MEANS));
    WORKS(vx_table_get_int64s(table, 2, wholes, &count));
    EXPECT(count == 2 && wholes[0] == INT64_MAX);
    WORKS(vx_table_get_int64s(table, 1, wholes, &count));
    EXPECT(wholes[0] == 0 && wholes[1] == 0); /* recordings are counted within their task */
    WORKS(vx_close(table));
    count = 4;
    WORKS(vx_document_set_int64(results, "Tasks/Series/Recordings/0/Dose", 1000));
    WORKS(vx_document_set_text(results, "Tasks/Series/Recordings/0/Wells/11/WellLabel", "B7"));
    WORKS(vx_document_set_int64s(results, "Tasks/Series/Recordings/0/Wells/11/FPfastDetectionTimes", beats, 2));
    WORKS(vx_document_set_doubles(results, "Tasks/Series/Recordings/0/Wells/11/Average", average, 2));
    WORKS(vx_document_set_int64(results, "Tasks/Series/Recordings/0/Wells/11/AverageCount", 2));
    WORKS(vx_document_set_double(results, "Tasks/Series/Recordings/0/Wells/11/Responses/Na-Slope/Value", 7.25));
    EXPECT(vx_document_save(results, own("results.vxr"), 0) == VX_ERROR_ARGUMENT);
    WORKS(vx_document_save(results, own("results.vxr"), -1));
    WORKS(vx_close(results));
    WORKS(vx_document_open(&results, VX_RESULTS, own("results.vxr")));

    WORKS(vx_table_open(&table, results, VX_TABLE_RESPONSES));
    WORKS(vx_table_get_size(table, &rows, &columns));
    EXPECT(rows == 1 && columns == 9);
    WORKS(vx_table_get_text(table, 6, 0, text, &size));
    EXPECT(strcmp(text, "Na-Slope") == 0);
    size = sizeof text;
    WORKS(vx_table_get_text(table, 3, 0, text, &size));
    EXPECT(strcmp(text, "1 nM") == 0);
    WORKS(vx_table_get_doubles(table, 7, values, &count));
    EXPECT(count == 1 && values[0] == 7.25);
    EXPECT(vx_table_get_int64s(table, 7, wholes, &count) == VX_ERROR_TYPE);
    WORKS(vx_table_get_int64s(table, 8, wholes, &count));
    EXPECT(count == 1 && wholes[0] == 0);
    EXPECT(vx_table_get_text(table, 8, 0, text, &size) == VX_ERROR_TYPE);
    WORKS(vx_close(table));
    WORKS(vx_table_open(&table, results, VX_TABLE_AVERAGES));
    size = sizeof text;
    WORKS(vx_table_get_name(table, 8, text, &size));
    WORKS(vx_table_get_type(table, 8, &type));
    count = 4;
    WORKS(vx_table_get_doubles(table, 8, values, &count));
    EXPECT(strcmp(text, "value") == 0 && type == VX_TYPE_DOUBLE && count == 2 && values[1] == -2.5);
    WORKS(vx_close(table));
    WORKS(vx_document_set_int64(results, "Tasks/Series/Recordings/0/Wells/11/AverageCount", 0)); /* no beat is in it */
    WORKS(vx_table_open(&table, results, VX_TABLE_AVERAGES));
    WORKS(vx_table_get_size(table, &rows, &columns));
    EXPECT(rows == 0);
    WORKS(vx_close(table));
    WORKS(vx_table_open(&table, results, VX_TABLE_BEATS));
    WORKS(vx_close(results)); /* the table has its own copy */
    count = 4;
    WORKS(vx_table_get_int64s(table, 7, wholes, &count));
    EXPECT(count == 2 && wholes[1] == 250);
    count = 4;
    WORKS(vx_table_get_int64s(table, 8, wholes, &count));
    EXPECT(count == 2 && wholes[0] == VX_MISSING && wholes[1] == 150);
    WORKS(vx_close(table));
}

/* Results have the tables, with the columns that the header names. */
static void name_columns(void) {
    static const char* const columns[4][9] = {
        {"task", "recording", "dose", "dose_text", "well", "label", "response", "value", "normalized"},
        {"task", "recording", "dose", "dose_text", "response", "mean", "sd", "wells", NULL},
        {"task", "recording", "dose", "dose_text", "well", "label", "beat", "time", "interval"},
        {"task", "recording", "dose", "dose_text", "well", "label", "sample", "time", "value"},
    };
    vx_document* const results = open_document(VX_RESULTS, "two_tasks.vxr");
    vx_document* const settings = open_document(VX_SETTINGS, "two_tasks.vxs");
    vx_table* refused = NULL;
    int32_t kind;
    for (kind = VX_TABLE_RESPONSES; kind <= VX_TABLE_AVERAGES; ++kind) {
        vx_table* table = NULL;
        int64_t rows, count = 20, i, doses[20];
        WORKS(vx_table_open(&table, results, kind));
        WORKS(vx_table_get_int64s(table, 2, doses, &count));
        EXPECT(doses[0] == 1000 && doses[count - 1] == (kind == VX_TABLE_MEANS ? 25000 : 0));
        WORKS(vx_table_get_size(table, &rows, &count));
        EXPECT(rows > 0 && count == (kind == VX_TABLE_MEANS ? 8 : 9));
        for (i = 0; i < count; ++i) {
            char name[20];
            int64_t size = sizeof name;
            WORKS(vx_table_get_name(table, i, name, &size));
            EXPECT(strcmp(name, columns[kind][i]) == 0);
        }
        WORKS(vx_close(table));
    }
    WORKS(vx_close(results));
    EXPECT(vx_table_open(&refused, settings, VX_TABLE_MEANS) == VX_ERROR_KIND);
    EXPECT(strstr(error_of(refused), "settings, not results") != NULL);
    WORKS(vx_close(refused));
    WORKS(vx_close(settings));
}

static void report_a_damaged_document(void) {
    static const char* const others[] = {"xml/results.vxr", "xml/settings.vxs"};
    const int64_t dose = 1000000000000000000;
    vx_document* document = NULL;
    int32_t kind;
    for (kind = VX_SETTINGS; kind <= VX_RESULTS; ++kind) {
        char text[300], after[300];
        int64_t size = sizeof text;
        EXPECT(vx_document_open(&document, kind, given(others[kind])) == VX_DAMAGED);
        WORKS(vx_document_get_faults(document, text, &size));
        EXPECT(size > 10 && strcmp(text, error_of(document)) == 0);
        EXPECT(text_is(document, "Header/FileType", kind == VX_RESULTS ? "VXSettings" : "VXResults"));
        EXPECT(vx_document_set_int64(document, "Header/Nothing", 1) == VX_ERROR_NOT_FOUND);
        EXPECT(strcmp(text, error_of(document)) != 0);
        size = sizeof after;
        WORKS(vx_document_get_faults(document, after, &size)); /* still those of the file */
        EXPECT(strcmp(text, after) == 0);
        WORKS(vx_close(document));
    }
    document = open_document(VX_SETTINGS, "xml/settings.vxs");
    WORKS(vx_document_set_int64(document, "Header/FileVersion", 2));
    WORKS(vx_document_set_int64s(document, "PropertyRecordPlate/Series", &dose, 1));
    WORKS(vx_document_save(document, own("older.vxs"), -1));
    WORKS(vx_close(document));
    EXPECT(vx_document_open(&document, VX_SETTINGS, own("older.vxs")) == VX_DAMAGED);
    EXPECT(strstr(error_of(document), "Series[0]/Dose: 1000000000000000000 pM is too large to be shown") != NULL);
    WORKS(vx_close(document));
}

static void export_workbooks(void) {
    vx_document* const former = open_document(VX_RESULTS, "xml/results.vxr");
    WORKS(vx_close(former));
    vx_document* const results = open_document(VX_RESULTS, "xml/results.vxr"); /* in the place of the former */
    vx_document* const settings = open_document(VX_SETTINGS, "xml/settings.vxs");
    const int64_t doses[] = {10};
    char start[4] = "";
    EXPECT(vx_export(results, former, own("wrong.xls")) == VX_ERROR_HANDLE); /* not busy */
    EXPECT(vx_export(settings, results, own("wrong.xls")) == VX_ERROR_KIND);
    EXPECT(vx_export(results, results, own("wrong.xls")) == VX_ERROR_BUSY);
    EXPECT(strstr(error_of(results), "Another call is using the handle") != NULL);
    WORKS(vx_document_set_int64s(settings, "PropertyRecordPlate/Series", doses, 1));
    WORKS(vx_export(results, settings, own("results.xls")));
    EXPECT(content_of(own("results.xls"), start, 4) == 4 && memcmp(start, "\xD0\xCF\x11\xE0", 4) == 0);
    EXPECT(vx_export(results, settings, own("no/such/folder.xls")) == VX_ERROR_WRITE);
    EXPECT(strchr(error_of(results), '\n') != NULL); /* a line for each workbook: that of all wells, and of one */
    WORKS(vx_close(results));
    WORKS(vx_close(settings));
}

/* ---- Planning, checking, recovering ---- */

/* Plans a recording of `count` wells, at most 100. */
static vx_plan* make_plan(int64_t count) {
    static int32_t wells[100], zeros[100];
    static double units[100];
    static int64_t intervals[100];
    vx_recording_header header = VX_RECORDING_HEADER_INIT;
    vx_plan* plan = NULL;
    int i;
    for (i = 0; i < 100; ++i) {
        wells[i] = i;
        zeros[i] = 32768;
        units[i] = 0.0002;
        intervals[i] = 100;
    }
    header.task = "Series";
    WORKS(vx_plan_check(&plan, &header, wells, zeros, units, intervals, count, 0));
    return plan;
}

static void plan_a_recording(void) {
    vx_plan* plan = make_plan(100);
    vx_recording_header header = VX_RECORDING_HEADER_INIT;
    vx_plan_result result = VX_PLAN_RESULT_INIT;
    vx_plan_cell cell = VX_PLAN_CELL_INIT;
    char text[200];
    int64_t size = sizeof text, split[10], count = 10, i;
    WORKS(vx_plan_get_result(plan, &result));
    EXPECT(!result.fits && result.wells == 100 && result.wells_that_fit > 20 && result.wells_that_fit < 100);
    WORKS(vx_plan_get_text(plan, text, &size));
    EXPECT(strncmp(text, "ADZeros has room for 189 bytes, but needs 599 for 100 wells", 58) == 0);
    WORKS(vx_plan_get_split(plan, split, &count));
    EXPECT(count == 4 && split[0] == result.wells_that_fit);
    for (i = 0; i < result.cells && strcmp(text, "WellIDs") != 0; ++i) {
        size = sizeof text;
        WORKS(vx_plan_get_key(plan, i, text, &size));
    }
    WORKS(vx_plan_get_cell(plan, i - 1, &cell));
    EXPECT(cell.is_list && cell.room == 189 && cell.needed == 289 && cell.wells_that_fit == 66);
    EXPECT(result.wells_that_fit == 31); /* the zeros need the most room */
    EXPECT(vx_plan_get_cell(plan, INT64_C(1) << 32, &cell) == VX_ERROR_ARGUMENT);
    WORKS(vx_plan_get_cell(plan, 0, &cell)); /* the name of the task has room for any number of wells */
    EXPECT(!cell.is_list && cell.wells_that_fit == 100);
    WORKS(vx_close(plan));
    plan = make_plan(20);
    size = sizeof text;
    WORKS(vx_plan_get_result(plan, &result));
    WORKS(vx_plan_get_text(plan, text, &size));
    EXPECT(result.fits && *text == '\0');
    WORKS(vx_close(plan));
    header.task = "a=b"; /* has room, but writers refuse it */
    WORKS(vx_plan_check(&plan, &header, NULL, NULL, NULL, NULL, 0, 0));
    size = sizeof text;
    WORKS(vx_plan_get_result(plan, &result));
    WORKS(vx_plan_get_text(plan, text, &size));
    EXPECT(!result.fits && result.wells_that_fit == result.wells && strstr(text, "TaskName") != NULL);
    WORKS(vx_close(plan));
    header.task = "a name that is longer than the room of its cell";
    WORKS(vx_plan_check(&plan, &header, NULL, NULL, NULL, NULL, 0, 0));
    size = sizeof text;
    WORKS(vx_plan_get_result(plan, &result));
    WORKS(vx_plan_get_text(plan, text, &size));
    EXPECT(!result.fits && result.wells_that_fit == result.wells && strstr(text, "TaskName has room for") == text);
    WORKS(vx_close(plan));
}

/* Counts calls; ends the work at those that `most` and `most_findings` say, by returning `end`. Keeps the texts of the
 * last finding. */
struct counted {
    int progress, findings, most, most_findings, end;
    char where[300], meaning[300];
};
static const struct counted without_limits = {0, 0, -1, -1, 1, "", ""};
static int VX_CALL count_progress(void* user, int64_t done, int64_t total) {
    struct counted* const count = (struct counted*)user;
    EXPECT(done <= total || total <= 0);
    return ++count->progress == count->most ? count->end : 0;
}
static int VX_CALL count_finding(void* user, int64_t offset, const char* where, const char* meaning) {
    struct counted* const count = (struct counted*)user;
    EXPECT(offset >= -1 && *where != '\0' && *meaning != '\0');
    snprintf(count->where, sizeof count->where, "%s", where);
    snprintf(count->meaning, sizeof count->meaning, "%s", meaning);
    return ++count->findings == count->most_findings ? count->end : 0;
}

/* Callbacks that count, with another one for progress. */
static vx_callbacks counting(struct counted* count, int(VX_CALL* progress)(void*, int64_t, int64_t)) {
    vx_callbacks callbacks = VX_CALLBACKS_INIT;
    callbacks.user = count;
    callbacks.progress = progress;
    callbacks.finding = count_finding;
    return callbacks;
}

/* Checks a raw data file and returns how often `progress` was called. */
static int calls_of_check(const char* path, int(VX_CALL* progress)(void*, int64_t, int64_t)) {
    struct counted count = without_limits;
    const vx_callbacks callbacks = counting(&count, progress);
    vx_report* report = NULL;
    WORKS(vx_verify(&report, path, VX_FILE_RAW, &callbacks));
    WORKS(vx_close(report));
    return count.progress;
}

/* Checks another file within a check. */
static int VX_CALL check_within(void* user, int64_t done, int64_t total) {
    EXPECT(calls_of_check(given("small_example.vxd"), count_progress) > 0);
    return count_progress(user, done, total);
}

static void check_in_a_callback(void) {
    vx_writer* const writer = begin_small_example(own("long.vxd"));
    const uint16_t sample = 1;
    int i;
    WORKS(vx_writer_set_strict(writer, 0));
    for (i = 0; i < 600; ++i)
        WORKS(vx_writer_write(writer, 11, i * 100, i * 100, 100, &sample, 1));
    WORKS(vx_close(writer));
    EXPECT(calls_of_check(own("long.vxd"), check_within) > 1);
}

/* The check of each kind of file reports progress, and ends if the caller wants no more. It says
 * whether readers open the file. */
static void check_each_kind(void) {
    static const char* const files[] = {"small_example.vxd", "xml/settings.vxs", "xml/results.vxr",
                                        "workbooks/big.xls"};
    int kind;
    for (kind = VX_FILE_RAW; kind <= VX_FILE_WORKBOOK; ++kind) {
        struct counted count = without_limits;
        vx_callbacks callbacks = counting(&count, count_progress);
        vx_report* report = NULL;
        vx_report_summary summary = VX_REPORT_SUMMARY_INIT;
        WORKS(vx_verify(&report, given(kind == VX_FILE_RAW ? "circle_of_recordings.vxd" : files[0]), kind, NULL));
        WORKS(vx_report_get_summary(report, &summary));
        WORKS(vx_close(report));
        EXPECT(!summary.is_sound && !summary.is_usable);
        WORKS(vx_verify(&report, given(files[kind]), kind, &callbacks));
        WORKS(vx_report_get_summary(report, &summary));
        WORKS(vx_close(report));
        EXPECT(count.progress > 0 && summary.is_usable);
        count.most = count.progress + 1;
        count.end = kind % 2 == 0 ? 1 : -1;
        EXPECT(vx_verify(&report, given(files[kind]), kind, &callbacks) == VX_CANCELLED);
        WORKS(vx_close(report));
    }
}

static void check_and_recover(void) {
    struct counted count = without_limits;
    const vx_callbacks callbacks = counting(&count, count_progress);
    vx_recover_options options = VX_RECOVER_OPTIONS_INIT;
    vx_report* report = NULL;
    vx_report_summary summary = VX_REPORT_SUMMARY_INIT;
    vx_finding finding = VX_FINDING_INIT;
    char text[300];
    int64_t size = sizeof text;
    char saved[2100];
    snprintf(saved, sizeof saved, "%s", own("saved.vxd")); /* the results of later calls may replace that of own */
    options.replace = 1;
    WORKS(vx_verify(&report, given("small_example.vxd"), VX_FILE_RAW, NULL));
    WORKS(vx_report_get_summary(report, &summary));
    EXPECT(summary.is_sound && summary.is_usable && summary.findings == 0);
    WORKS(vx_close(report));
    WORKS(vx_verify(&report, given("damaged_segments.vxd"), VX_FILE_RAW, &callbacks));
    WORKS(vx_report_get_summary(report, &summary));
    EXPECT(!summary.is_sound && summary.findings == count.findings && count.findings > 3 && count.progress > 0);
    WORKS(vx_report_get_finding(report, 0, &finding));
    WORKS(vx_report_get_text(report, 0, VX_FINDING_EXPECTED, text, &size));
    EXPECT(finding.offset > 0 && size > 1);
    size = sizeof text;
    WORKS(vx_report_get_text(report, summary.kept - 1, VX_FINDING_WHERE, text, &size));
    EXPECT(strcmp(text, count.where) == 0);
    size = sizeof text;
    WORKS(vx_report_get_text(report, summary.kept - 1, VX_FINDING_MEANING, text, &size));
    EXPECT(strcmp(text, count.meaning) == 0);
    WORKS(vx_close(report));
    EXPECT(vx_verify(&report, "no/such/file", VX_FILE_WORKBOOK, NULL) == VX_ERROR_FILE);
    WORKS(vx_close(report));

    WORKS(vx_recover(&report, given("cut_samples.vxd"), saved, &options, NULL));
    WORKS(vx_report_get_summary(report, &summary));
    WORKS(vx_report_get_finding(report, 0, &finding));
    EXPECT(summary.findings == 1 && summary.kept == 1 && finding.offset == 3958 && finding.end == 4261);
    size = sizeof text;
    WORKS(vx_report_get_text(report, 0, VX_FINDING_FOUND, text, &size));
    EXPECT(strcmp(text, "lost") == 0 && !summary.is_sound);
    size = sizeof text;
    WORKS(vx_report_get_text(report, 0, VX_FINDING_WHERE, text, &size));
    EXPECT(strcmp(text, "recording 1 > well 12 > bytes 3958 to 4261") == 0);
    WORKS(vx_close(report));
    count.findings = count.progress = 0;
    WORKS(vx_recover(&report, given("unfinished.vxd"), saved, &options, &callbacks));
    WORKS(vx_report_get_summary(report, &summary));
    EXPECT(summary.bytes > 3000 && summary.findings == count.findings && count.progress > 0);
    WORKS(vx_close(report));
    WORKS(vx_verify(&report, saved, VX_FILE_RAW, NULL));
    WORKS(vx_report_get_summary(report, &summary));
    EXPECT(summary.is_sound);
    WORKS(vx_close(report));
    EXPECT(vx_recover(&report, saved, own("./saved.vxd"), &options, NULL) == VX_ERROR_ARGUMENT);
    WORKS(vx_close(report));
#if defined(__linux__)
    remove(own("link.vxd"));
    EXPECT(symlink(saved, own("link.vxd")) == 0);
    EXPECT(vx_recover(&report, saved, own("link.vxd"), &options, NULL) == VX_ERROR_ARGUMENT);
    WORKS(vx_close(report));
#endif
    EXPECT(vx_recover(&report, given("small_example.vxd"), own("saved.vxd"), NULL, NULL) == VX_ERROR_WRITE);
    EXPECT(strstr(error_of(report), "choose another name") != NULL);
    WORKS(vx_close(report));
    EXPECT(vx_recover(&report, given("small_example.txt"), saved, &options, NULL) == VX_ERROR_FILE);
    EXPECT(strstr(error_of(report), "There is nothing to save") != NULL);
    WORKS(vx_close(report));
#if defined(_WIN32)
    EXPECT(vx_recover(&report, given("small_example.vxd"), own("\xFF.vxd"), &options, NULL) == VX_ERROR_ARGUMENT);
    WORKS(vx_close(report));
#endif

    /* A cancelled recovery leaves no file. */
    count.most = count.progress + 1;
    remove(own("small.vxd"));
    EXPECT(vx_recover(&report, given("unfinished.vxd"), own("small.vxd"), &options, &callbacks) == VX_CANCELLED);
    WORKS(vx_close(report));
    count.most = count.end = -1;
    count.most_findings = count.findings + 1;
    EXPECT(vx_recover(&report, given("damaged_segments.vxd"), own("small.vxd"), &options, &callbacks) == VX_CANCELLED);
    EXPECT(vx_report_get_summary(report, &summary) == VX_ERROR_STATE);
    WORKS(vx_close(report));
    EXPECT(content_of(own("small.vxd"), text, 1) < 0);
}

#if defined(__linux__)
static int VX_CALL make_folder_there(void* path, int64_t done, int64_t total) {
    (void)done, (void)total;
    mkdir((const char*)path, 0700);
    return 0;
}

/* A folder takes the name of the new file during the recovery, so there is nothing to report on. */
static void report_a_recovery_without_a_file(void) {
    static char folder[1100];
    vx_callbacks callbacks = VX_CALLBACKS_INIT;
    vx_report* report = NULL;
    vx_report_summary summary = VX_REPORT_SUMMARY_INIT;
    snprintf(folder, sizeof folder, "%s", own("folder.vxd"));
    remove(folder);
    callbacks.user = folder;
    callbacks.progress = make_folder_there;
    EXPECT(vx_recover(&report, given("cut_samples.vxd"), folder, NULL, &callbacks) == VX_ERROR_WRITE);
    EXPECT(strstr(error_of(report), folder) != NULL);
    EXPECT(vx_report_get_summary(report, &summary) == VX_ERROR_STATE);
    WORKS(vx_close(report));
    EXPECT(rmdir(folder) == 0);
}

static void write_cell(FILE* file, const char* key, int64_t value) {
    char cell[50] = {0};
    snprintf(cell, sizeof cell, "%s=%" PRId64, key, value);
    memcpy(cell + 48, "\r\n", 2);
    fwrite(cell, 1, sizeof cell, file);
}

/* Two segments have more samples than 32 bits can count. The samples are holes in the file, which take no room. A third
 * one lies beyond what 32 bits can address; it is short, since its samples are read. */
static void count_more_than_32_bits(void) {
    static char bytes[10000];
    const int64_t half = INT64_C(1) << 31, first = 3650, size = 300 + 2 * half, last = first + 2 * size;
    FILE* file = fopen(own("huge.vxd"), "wb");
    vx_raw* raw = NULL;
    vx_recording* recording = NULL;
    vx_segments* segments;
    vx_segment_info segment = VX_SEGMENT_INFO_INIT;
    int64_t count = 0, i;
    EXPECT(content_of(given("small_example.vxd"), bytes, sizeof bytes) > first + 100);
    EXPECT(file != NULL && fwrite(bytes, 1, (size_t)first, file) == (size_t)first);
    if (file == NULL) return;
    for (i = 0; i < 3; ++i) {
        const int64_t samples = i < 2 ? half : 4;
        EXPECT(fseeko(file, first + i * size, SEEK_SET) == 0);
        fwrite(bytes + first, 1, 100, file); /* Type and ID */
        write_cell(file, "FPosNextSegmentHdr", i < 2 ? first + (i + 1) * size : -1);
        write_cell(file, "TimeFrom", 100 * half * i);
        write_cell(file, "TimeTo", 100 * (half * i + samples - 1));
        write_cell(file, "Size", samples);
    }
    fclose(file);
    EXPECT(truncate(own("huge.vxd"), last + 300 + 2 * 4) == 0);
    WORKS(vx_raw_open(&raw, own("huge.vxd")));
    WORKS(vx_recording_open(&recording, raw, 0, NULL));
    WORKS(vx_recording_read(recording, 11, VX_TIME_FIRST, VX_TIME_LAST, NULL, &count));
    EXPECT(count == 2 * half + 4);
    WORKS(vx_close(recording));
    WORKS(vx_close(raw));
    EXPECT((file = fopen(own("huge.vxd"), "r+b")) != NULL && fseeko(file, 1190 + 150, SEEK_SET) == 0);
    if (file == NULL) return;
    write_cell(file, "FPosRecordingData", last); /* the recording begins with the third segment */
    fclose(file);
    segments = open_segments(own("huge.vxd"), 0, VX_ALL_WELLS, VX_OK);
    WORKS(vx_segments_next(segments, &segment, NULL, &count));
    EXPECT(count == 4 && segment.offset == last + 300);
    WORKS(vx_close(segments));
    EXPECT(remove(own("huge.vxd")) == 0);
}
#endif

/* A reference file whose cells can be changed before it is recovered. */
static char copied[10000];
static int64_t copied_size;

static void copy_reference(const char* name) { copied_size = content_of(given(name), copied, sizeof copied); }

/* Replaces the text of a cell by one that isn't longer. */
static void replace_text(int64_t offset, const char* was, const char* by) {
    EXPECT(offset < copied_size && strcmp(copied + offset, was) == 0 && strlen(by) <= strlen(was));
    memset(copied + offset, 0, strlen(was));
    memcpy(copied + offset, by, strlen(by));
}

static vx_report* recover_copy(void) {
    FILE* const file = fopen(own("copied.vxd"), "wb");
    vx_recover_options options = VX_RECOVER_OPTIONS_INIT;
    vx_report* report = NULL;
    options.replace = 1;
    EXPECT(file != NULL && fwrite(copied, 1, (size_t)copied_size, file) == (size_t)copied_size && fclose(file) == 0);
    WORKS(vx_recover(&report, own("copied.vxd"), own("recovered.vxd"), &options, NULL));
    return report;
}

/* The ID 0 is one as any other. */
static void report_a_loss_of_well_0(void) {
    vx_report* report;
    char text[100];
    int64_t length = sizeof text;
    copy_reference("cut_samples.vxd");
    replace_text(1190 + 430, "WellIDs=11:12", "WellIDs=11:0");
    replace_text(4008, "ID=12", "ID=0");
    report = recover_copy();
    WORKS(vx_report_get_text(report, 0, VX_FINDING_WHERE, text, &length));
    EXPECT(strcmp(text, "recording 1 > well 0 > bytes 3958 to 4261") == 0);
    WORKS(vx_close(report));
}

/* A lost cell of a recording header is neither a loss nor a doubt about bytes, but the file isn't sound. */
static void report_a_lost_cell(void) {
    vx_report* report;
    vx_report_summary summary = VX_REPORT_SUMMARY_INIT;
    copy_reference("small_example.vxd");
    replace_text(1190 + 100, "Dose=1000", "xose=1000");
    report = recover_copy();
    WORKS(vx_report_get_summary(report, &summary));
    EXPECT(summary.findings == 0 && !summary.is_sound);
    WORKS(vx_close(report));
}

/* Only the first 10000 remarks are kept, but all are counted: one for each of 10002 segments whose position says that
 * none follows, and one because segments share their times. */
static void count_every_remark(void) {
    static char bytes[10000];
    const int64_t size = content_of(given("small_example.vxd"), bytes, sizeof bytes), segment = 3958;
    FILE* const file = fopen(own("many.vxd"), "wb");
    vx_recover_options options = VX_RECOVER_OPTIONS_INIT;
    vx_report* report = NULL;
    vx_report_summary summary = VX_REPORT_SUMMARY_INIT;
    int i;
    EXPECT(file != NULL && fwrite(bytes, 1, (size_t)size, file) == (size_t)size);
    for (i = 0; i < 10002; ++i)
        fwrite(bytes + segment, 1, (size_t)(size - segment), file);
    EXPECT(fclose(file) == 0);
    options.replace = 1;
    WORKS(vx_recover(&report, own("many.vxd"), own("many_saved.vxd"), &options, NULL));
    WORKS(vx_report_get_summary(report, &summary));
    EXPECT(summary.kept == 10000 && summary.findings == 10003);
    WORKS(vx_close(report));
}

/* Only the handles that are open at once are limited in number, to nearly 2^20. A closed one never comes back. Every
 * 5000th document stays open here, and can still be closed at the end. */
static void make_a_million_handles(void) {
    static vx_document *kept[220], *many[3000];
    const void* first = NULL;
    char text[10];
    int i, again = 0, code = VX_OK;
    for (i = 0; i < 1100000 && code == VX_OK; ++i) {
        vx_document* document = NULL;
        code = vx_document_create(&document, VX_RESULTS);
        if (i == 2) first = document; /* its place is used again until one stays open */
        again += document == first;
        if (i % 5000 == 1)
            kept[i / 5000] = document;
        else
            vx_close(document);
    }
    WORKS(code);
    EXPECT(again == 1);
    for (i = 0; i < 220; ++i)
        WORKS(vx_close(kept[i]));
    /* Many that are open at once keep their own texts. */
    for (i = 0; i < 3000; ++i) {
        WORKS(vx_document_create(&many[i], VX_RESULTS));
        snprintf(text, sizeof text, "%d", i);
        WORKS(vx_document_set_text(many[i], "Header/Guid", text));
    }
    for (i = 0; i < 3000; ++i) {
        snprintf(text, sizeof text, "%d", i);
        EXPECT(text_is(many[i], "Header/Guid", text));
        WORKS(vx_close(many[i]));
    }
}

#ifdef __cplusplus
/* Threads with handles of their own, made from one file, and all of them with one handle, which is used by one at a
 * time. */
static void use_threads(void) {
    const std::string given_path = given("small_example.vxd");
    vx_recording* const shared = open_recording("small_example.vxd", 0, NULL);
    vx_raw* shared_raw = NULL;
    WORKS(vx_raw_open(&shared_raw, given_path.c_str()));
    std::atomic<int> wrong{0}, busy{0}, read{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 200; ++i) {
                vx_raw* raw = NULL;
                vx_recording* recording = NULL;
                vx_segments* segments = NULL;
                vx_segment_info segment = VX_SEGMENT_INFO_INIT;
                uint16_t samples[4];
                int64_t count = 4;
                wrong += (vx_segments_open)(&segments, shared_raw, 0, 12) == VX_ERROR_FILE;
                if (segments != NULL && (vx_segments_next)(segments, &segment, samples, &count) == VX_OK)
                    wrong += samples[3] != 10;
                wrong += (vx_close)(segments) != VX_OK;
                wrong += (vx_raw_open)(&raw, given_path.c_str()) != VX_OK;
                wrong += (vx_recording_open)(&recording, raw, 0, NULL) != VX_OK;
                wrong += (vx_recording_read)(recording, 12, 0, 300, samples, &count) != VX_OK || samples[3] != 10;
                const int code = (vx_recording_read)(shared, 11, 0, 300, samples, &count);
                (code == VX_OK ? read : code == VX_ERROR_BUSY ? busy : wrong) += 1;
                wrong += (vx_close)(raw) != VX_OK || (vx_close)(recording) != VX_OK;
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT(wrong == 0 && read > 0 && read + busy == 800);
    WORKS(vx_close(shared));
    WORKS(vx_close(shared_raw));
}
#endif

/* Closes what the calls with wrong arguments get. */
static void refuse_wrong_arguments(void) {
    vx_raw* raw = NULL;
    WORKS(vx_raw_open(&raw, given("small_example.vxd")));
    closed = raw;
    WORKS(vx_close(raw));
    WORKS(vx_raw_open(&good_vx_raw, given("small_example.vxd")));
    WORKS(vx_recording_open(&good_vx_recording, good_vx_raw, 0, NULL));
    WORKS(vx_recording_select(&good_vx_selection, good_vx_recording, NULL, 0, 0, 300));
    WORKS(vx_segments_open(&good_vx_segments, good_vx_raw, 0, VX_ALL_WELLS));
    vx_segments_open(&failed_vx_segments, NULL, 0, 0);
    good_vx_writer = begin_small_example(own("wrong.vxd"));
    vx_raw_open(&failed_vx_raw, "");
    vx_recording_open(&failed_vx_recording, NULL, 0, NULL);
    vx_recording_select(&failed_vx_selection, NULL, NULL, 0, 0, 0);
    vx_writer_create(&failed_vx_writer, "no/such/folder/file", VX_CREATE_NEW);
    WORKS(vx_document_create(&good_vx_document, VX_RESULTS));
    WORKS(vx_table_open(&good_vx_table, good_vx_document, VX_TABLE_BEATS));
    WORKS(vx_verify(&good_vx_report, given("damaged_segments.vxd"), VX_FILE_RAW, NULL));
    good_vx_plan = make_plan(100);
    vx_document_open(&failed_vx_document, VX_RESULTS, "");
    vx_table_open(&failed_vx_table, good_vx_document, 99);
    vx_verify(&failed_vx_report, "", VX_FILE_RAW, NULL);
    vx_plan_check(&failed_vx_plan, NULL, NULL, NULL, NULL, NULL, 0, 0);
    call_with_wrong_arguments();
    vx_close(good_vx_document), vx_close(failed_vx_document);
    vx_close(good_vx_table), vx_close(failed_vx_table);
    vx_close(good_vx_report), vx_close(failed_vx_report);
    vx_close(good_vx_plan), vx_close(failed_vx_plan);
    vx_close(good_vx_raw), vx_close(failed_vx_raw);
    vx_close(good_vx_recording), vx_close(failed_vx_recording);
    vx_close(good_vx_selection), vx_close(failed_vx_selection);
    vx_close(good_vx_segments), vx_close(failed_vx_segments);
    vx_close(good_vx_writer), vx_close(failed_vx_writer);
}

static void (*const phases[])(void) = {
    read_headers,
    read_samples,
    read_a_cut_file,
    read_damaged_and_unfinished,
    report_a_failed_open,
    accept_structs_of_later_versions,
    read_segment_by_segment,
    end_segments,
    pass_an_empty_segment,
#if defined(__linux__)
    read_a_renamed_file,
#endif
    write_raw_data,
#if defined(__linux__)
    report_a_full_disk,
#endif
#if defined(_WIN32)
    take_paths_as_utf8,
#endif
    read_results,
    change_settings,
    make_results,
    name_columns,
    report_a_damaged_document,
    export_workbooks,
    plan_a_recording,
    check_and_recover,
    report_a_loss_of_well_0,
    report_a_lost_cell,
    count_every_remark,
#if defined(__linux__)
    report_a_recovery_without_a_file,
    count_more_than_32_bits,
#endif
    check_in_a_callback,
    check_each_kind,
    make_a_million_handles,
#ifdef __cplusplus
    use_threads,
#endif
    refuse_wrong_arguments,
    check_initialisers,
};

int main(int argc, char** argv) {
    size_t i;
    if (argc != 3) return 2;
    snprintf(reference, sizeof reference, "%s", argv[1]);
    snprintf(scratch, sizeof scratch, "%s", argv[2]);
    for (i = 0; i < sizeof phases / sizeof *phases; ++i)
        phases[i]();
    for (i = 0; i < sizeof calls / sizeof *calls; ++i) {
        if (calls[i] > 0) continue;
        ++failures;
        printf("  %s is never called\n", call_names[i]);
    }
    printf("%d failures\n", failures);
    return failures == 0 ? 0 : 1;
}
