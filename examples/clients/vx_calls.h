/* The calls that the glue for R and for Octave and MATLAB share. Each returns NULL, or the text of a failure, which is
 * valid until the next call. */
#include <vxfileio.h>

typedef struct vx_first {
    vx_recording* recording;
    char plate[100], task[100];
    int64_t count;
    vx_raw_info info;
    vx_recording_info about;
    vx_segment_info segment;
    vx_well_info well;
} vx_first;

#define VX_FIRST_INIT \
    { NULL, "", "", 0, VX_RAW_INFO_INIT, VX_RECORDING_INFO_INIT, VX_SEGMENT_INFO_INIT, VX_WELL_INFO_INIT }

static const char* vx_text_of(const void* handle) {
    static char text[500];
    int64_t size = sizeof text;
    return vx_last_error(handle, text, &size) == VX_ERROR_HANDLE ? "out of memory" : text;
}

/* Opens the first recording of a file, describes its first segment's well, and counts the samples of that. */
static const char* vx_open_first(vx_first* first, const char* path) {
    vx_raw* raw = NULL;
    int64_t plate_size = sizeof first->plate, task_size = sizeof first->task;
    const char* failure = NULL;
    if (vx_raw_open(&raw, path) || vx_raw_get_info(raw, &first->info) || vx_raw_get_recording(raw, 0, &first->about) ||
        vx_raw_get_text(raw, VX_RAW_PLATE_ID, first->plate, &plate_size) ||
        vx_raw_get_task(raw, 0, first->task, &task_size))
        failure = vx_text_of(raw);
    else if (vx_recording_open(&first->recording, raw, 0, NULL) ||
             vx_recording_get_segment(first->recording, 0, &first->segment) ||
             vx_recording_get_well(first->recording, first->segment.well, &first->well) ||
             vx_recording_read(first->recording, first->well.well, VX_TIME_FIRST, VX_TIME_LAST, NULL, &first->count))
        failure = vx_text_of(first->recording);
    vx_close(raw);
    return failure;
}

static const char* vx_read_first(vx_first* first, uint16_t* samples) {
    return vx_recording_read(first->recording, first->well.well, VX_TIME_FIRST, VX_TIME_LAST, samples, &first->count)
               ? vx_text_of(first->recording)
               : NULL;
}

/* Writes a file with these samples of the well. */
static const char* vx_copy_first(const vx_first* first, const uint16_t* samples, const char* path) {
    vx_file_header file = VX_FILE_HEADER_INIT;
    vx_recording_header header = VX_RECORDING_HEADER_INIT;
    const vx_well_info* const well = &first->well;
    const int64_t from = first->segment.time_from, to = from + (first->count - 1) * well->interval;
    vx_writer* writer = NULL;
    const char* failure = NULL;
    file.plate_id = first->plate;
    header.task = first->task;
    header.number = first->about.number;
    header.dose = first->about.dose;
    if (vx_writer_create(&writer, path, VX_CREATE_REPLACE) || vx_writer_write_file_header(writer, &file) ||
        vx_writer_begin_recording(writer, &header, &well->well, &well->ad_zero, &well->units_per_ad, &well->interval,
                                  1) ||
        vx_writer_write(writer, well->well, from, to, well->interval, samples, first->count) ||
        vx_writer_finish(writer))
        failure = vx_text_of(writer);
    vx_close(writer);
    return failure;
}
