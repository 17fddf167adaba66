/* Uses every function of the C interface, as C99 and as C++.
 *
 *   c_test REFERENCE_FOLDER SCRATCH_FOLDER
 *
 * Each phase prints its name. Ends with 1 if anything isn't as it should be. */
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
static int64_t eight, minus_one;
static double room[64];
static const char* texts = "no/such/file";

static void reset(void) {
    eight = 8;
    minus_one = -1;
    memset(room, 0, sizeof room);
}

static void* struct_of(int64_t size) {
    static union {
        int64_t size;
        char bytes[8192];
    } any;
    memset(&any, 0, sizeof any);
    any.size = size;
    return &any;
}

static void* struct_with_tail(int64_t known) {
    char* const any = (char*)struct_of(known + 8);
    any[known + 7] = 1;
    return any;
}

static void expect_wrong(int code, int expected, const char* function, const char* argument) {
    if (expected == ANY_FAILURE ? code != VX_OK && code != VX_ERROR_INTERNAL : code == expected) return;
    ++failures;
    printf("  %s, where %s: %d instead of %d\n", function, argument, code, expected);
}

#include "wrong_arguments.h"

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
    vx_raw_info info = {sizeof info, 0, 0, 0};
    vx_recording_info recording;
    char text[20];
    int64_t size = sizeof text, list[3], count = 3, index = -1;
    WORKS(vx_raw_open(&raw, given("several_recordings.vxd")));
    WORKS(vx_raw_get_info(raw, &info));
    EXPECT(info.recordings > 2 && info.file_version == 3 && info.compound_id == -7);
    WORKS(vx_raw_get_text(raw, VX_RAW_HEADER_ID, text, &size));
    EXPECT(strcmp(text, "OVL Vexaprobe 2") == 0 && size == 16);
    WORKS(vx_raw_get_list(raw, VX_RAW_COMPOUND_TEST, list, &count));
    EXPECT(count == 3 && list[1] == 1000000 && list[2] == INT64_MAX);
    memset(&recording, 0, sizeof recording);
    recording.size = sizeof recording;
    WORKS(vx_raw_find_recording(raw, "CompoundTest", -3, &index));
    WORKS(vx_raw_get_recording(raw, index, &recording));
    EXPECT(index == 1 && recording.number == -3 && recording.dose == -1 && recording.wells == 2);
    EXPECT(recording.start_time == 1000000 && recording.recording_time == 300 && recording.is_finished == 1);
    size = sizeof text;
    WORKS(vx_raw_get_task(raw, 0, text, &size));
    EXPECT(strcmp(text, "PreQC") == 0);
    EXPECT(vx_raw_find_recording(raw, "CompoundTest", 77, &index) == VX_ERROR_NOT_FOUND && index == 1);
    WORKS(vx_close(raw));
}

static void read_samples(void) {
    vx_recording* const recording = open_recording("several_recordings.vxd", 0, NULL);
    vx_recording_state state;
    vx_well_info well;
    vx_segment_info segment;
    vx_selection* selection = NULL;
    vx_selected_well selected;
    vx_run runs[2];
    int32_t wells[3];
    const int32_t chosen[] = {2, 1};
    uint16_t samples[8] = {0};
    double values[8];
    int64_t count = 3;
    memset(&state, 0, sizeof state);
    memset(&well, 0, sizeof well);
    memset(&segment, 0, sizeof segment);
    memset(&selected, 0, sizeof selected);
    state.size = sizeof state;
    well.size = sizeof well;
    segment.size = sizeof segment;
    selected.size = sizeof selected;
    WORKS(vx_recording_get_state(recording, &state));
    EXPECT(state.segments == 4 && state.wells == 3 && state.certain_samples == 7);
    WORKS(vx_recording_get_wells(recording, wells, &count));
    EXPECT(count == 3 && wells[0] == 1 && wells[2] == 96);
    WORKS(vx_recording_get_well(recording, 2, &well));
    EXPECT(well.well == 2 && well.interval == 50 && well.ad_zero == -32768 && fabs(well.units_per_ad - 1e-5) < 1e-12);
    WORKS(vx_recording_get_segment(recording, 3, &segment));
    EXPECT(segment.well == 2 && segment.samples == 1 && segment.time_from == 100 && segment.time_to == 149);
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
    WORKS(vx_recording_select(&selection, recording, chosen, 2, VX_TIME_FIRST, VX_TIME_LAST));
    WORKS(vx_close(recording)); /* the selection keeps it */
    WORKS(vx_selection_get_well_count(selection, &count));
    EXPECT(count == 2);
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

static void read_damaged_and_unfinished(void) {
    vx_recording_options options = {sizeof options, 0, 1};
    vx_recording* recording = open_recording("damaged_segments.vxd", 1, &options);
    vx_raw* raw = NULL;
    char text[100];
    int64_t size = sizeof text;
    WORKS(vx_recording_get_damage(recording, text, &size));
    EXPECT(strcmp(text, "Error reading Data Segment Header") == 0);
    WORKS(vx_close(recording));

    WORKS(vx_raw_open(&raw, given("unfinished.vxd")));
    EXPECT(vx_recording_open(&recording, raw, 1, NULL) == VX_ERROR_FILE);
    EXPECT(strcmp(error_of(recording), "The recording isn't finished.") == 0);
    WORKS(vx_close(recording));
    options.unfinished = 1;
    WORKS(vx_recording_open(&recording, raw, 1, &options));
    WORKS(vx_close(recording));
    WORKS(vx_close(raw));
}

static void report_a_failed_open(void) {
    vx_raw* raw = NULL;
    vx_raw_info info = {sizeof info, 0, 0, 0};
    int32_t version = 0;
    char text[10];
    int64_t size = sizeof text;
    EXPECT(vx_raw_open(&raw, "no/such/file") == VX_ERROR_FILE && raw != NULL);
    EXPECT(strcmp(error_of(raw), "Cannot open file no/such/file") == 0);
    EXPECT(vx_last_error(raw, text, &size) == VX_ERROR_SHORT_BUFFER && size == 30 && strcmp(text, "Cannot op") == 0);
    EXPECT(vx_raw_get_info(raw, &info) == VX_ERROR_STATE);
    WORKS(vx_close(raw));
    EXPECT(vx_close(raw) == VX_ERROR_HANDLE && vx_last_error(raw, text, &size) == VX_ERROR_HANDLE);
    WORKS(vx_close(NULL));
    WORKS(vx_get_version(&version));
    EXPECT(version == VX_VERSION);
    size = sizeof text;
    WORKS(vx_code_text(VX_OK, text, &size));
    EXPECT(strcmp(text, "Success") == 0 && vx_code_text(12345, text, &size) == VX_ERROR_NOT_FOUND);
    size = sizeof text;
    WORKS(vx_to_utf8("1\xB5M", 3, text, &size));
    EXPECT(size == 5 && strcmp(text, "1\xC2\xB5M") == 0);
}

/* The rule for sizes: a longer struct works, and gets zeros. */
static void accept_structs_of_later_versions(void) {
    struct {
        vx_raw_info info;
        int64_t later;
    } longer;
    vx_raw* raw = NULL;
    memset(&longer, 0xFF, sizeof longer);
    longer.info.size = sizeof longer;
    WORKS(vx_raw_open(&raw, given("small_example.vxd")));
    WORKS(vx_raw_get_info(raw, &longer.info));
    EXPECT(longer.info.size == sizeof longer && longer.info.recordings == 1 && longer.later == 0);
    longer.info.size = sizeof longer.info - 8;
    EXPECT(vx_raw_get_info(raw, &longer.info) == VX_ERROR_STRUCT);
    WORKS(vx_close(raw));
}

static vx_writer* begin_small_example(const char* path) {
    vx_writer* writer = NULL;
    vx_file_header file;
    vx_recording_header recording;
    const int32_t wells[] = {11, 12}, zeros[] = {32768, 32768};
    const double units[] = {0.0002, 0.0002};
    const int64_t intervals[] = {100, 100};
    memset(&file, 0, sizeof file);
    file.size = sizeof file;
    file.file_type = "Raw";
    file.program_version = "1.0";
    file.guid = "0123";
    file.plate_id = "P1";
    file.compound_id = 5;
    file.compound_name = "Test";
    memset(&recording, 0, sizeof recording);
    recording.size = sizeof recording;
    recording.task = "CompoundTest";
    recording.number = 1;
    recording.dose = 1000;
    recording.start_time = 1000000;
    recording.recording_time = 300;
    WORKS(vx_writer_create(&writer, path, VX_CREATE_REPLACE));
    WORKS(vx_writer_set_strict(writer, 1));
    WORKS(vx_writer_write_file_header(writer, &file));
    WORKS(vx_writer_begin_recording(writer, &recording, wells, zeros, units, intervals, 2));
    return writer;
}

/* Writes the reference file byte for byte. */
static void write_raw_data(void) {
    const char* const path = own("written.vxd");
    vx_writer* writer = begin_small_example(path);
    const uint16_t first[] = {1, 256, 65535, 32768}, second[] = {7, 8, 9, 10};
    const int64_t list[] = {1000, 2000};
    char text[100];
    int64_t size = sizeof text;
    WORKS(vx_writer_write(writer, 11, 0, 300, 100, first, 4));
    EXPECT(vx_writer_write(writer, 12, 0, 300, 100, second, 3) == VX_ERROR_ARGUMENT);
    EXPECT(vx_writer_write(writer, 13, 0, 300, 100, second, 4) == VX_ERROR_REFUSED);
    EXPECT(strstr(error_of(writer), "13") != NULL);
    WORKS(vx_writer_write(writer, 12, 0, 300, 100, second, 4));
    WORKS(vx_writer_set_list(writer, VX_RAW_COMPOUND_TEST, list, 2));
    WORKS(vx_writer_flush_to_disk(writer));
    WORKS(vx_writer_finish(writer));
    WORKS(vx_writer_get_report(writer, text, &size));
    EXPECT(size == 1);
    EXPECT(vx_writer_write(writer, 11, 400, 400, 100, first, 1) == VX_ERROR_REFUSED);
    WORKS(vx_close(writer));
    EXPECT(same_files(path, given("small_example.vxd")));
    EXPECT(vx_writer_create(&writer, path, VX_CREATE_NEW) == VX_ERROR_FILE);
    WORKS(vx_close(writer));
}

#if defined(__linux__)
/* The system refuses every byte. */
static void report_a_full_disk(void) {
    vx_writer* writer = NULL;
    vx_file_header file;
    memset(&file, 0, sizeof file);
    file.size = sizeof file;
    WORKS(vx_writer_create(&writer, "/dev/full", VX_CREATE_REPLACE));
    EXPECT(vx_writer_write_file_header(writer, &file) == VX_ERROR_WRITE);
    EXPECT(strstr(error_of(writer), "No space left on device") != NULL);
    EXPECT(vx_writer_finish(writer) == VX_ERROR_WRITE);
    EXPECT(vx_close(writer) == VX_ERROR_WRITE);
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
    good_vx_writer = begin_small_example(own("wrong.vxd"));
    vx_raw_open(&failed_vx_raw, "");
    vx_recording_open(&failed_vx_recording, NULL, 0, NULL);
    vx_recording_select(&failed_vx_selection, NULL, NULL, 0, 0, 0);
    vx_writer_create(&failed_vx_writer, "no/such/folder/file", VX_CREATE_NEW);
    call_with_wrong_arguments();
    vx_close(good_vx_raw), vx_close(failed_vx_raw);
    vx_close(good_vx_recording), vx_close(failed_vx_recording);
    vx_close(good_vx_selection), vx_close(failed_vx_selection);
    vx_close(good_vx_writer), vx_close(failed_vx_writer);
}

static void (*const phases[])(void) = {
    read_headers,
    read_samples,
    read_damaged_and_unfinished,
    report_a_failed_open,
    accept_structs_of_later_versions,
    write_raw_data,
#if defined(__linux__)
    report_a_full_disk,
#endif
    refuse_wrong_arguments,
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
