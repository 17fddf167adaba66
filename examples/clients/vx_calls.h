/* The calls that the glue for R and for Octave and MATLAB share. Each returns NULL, or the text of a failure, which is
 * valid until the next call. */
#include <string.h>
#include <vxfileio.h>

typedef struct vx_first {
    vx_recording* recording;
    char plate[100], task[100];
    int64_t recordings, count;
    vx_recording_info about;
    vx_well_info channel;
    vx_segment_info segment;
} vx_first;

/* The handle is looked at after the call, which may have made it. */
#define vx_failure(call, handle) (vx_code = (call), vx_text_of(vx_code, handle))
static int vx_code;

static const char* vx_text_of(int code, const void* handle) {
    static char text[500];
    int64_t size = sizeof text;
    if (code == VX_OK) return NULL;
    if (vx_last_error(handle, text, &size) == VX_ERROR_HANDLE) strcpy(text, "out of memory");
    return text;
}

/* Opens the first recording of a file, describes its first well, and counts the samples of that. */
static const char* vx_open_first(vx_first* first, const char* path) {
    vx_raw* raw = NULL;
    vx_raw_info info = {sizeof info, 0, 0, 0};
    int64_t size = sizeof first->plate, room = 100;
    int32_t wells[100];
    const char* failure;
    memset(first, 0, sizeof *first);
    first->about.size = sizeof first->about;
    first->channel.size = sizeof first->channel;
    first->segment.size = sizeof first->segment;
    failure = vx_failure(vx_raw_open(&raw, path), raw);
    if (!failure) failure = vx_failure(vx_raw_get_info(raw, &info), raw);
    if (!failure) failure = vx_failure(vx_raw_get_text(raw, VX_RAW_PLATE_ID, first->plate, &size), raw);
    size = sizeof first->task;
    if (!failure) failure = vx_failure(vx_raw_get_task(raw, 0, first->task, &size), raw);
    if (!failure) failure = vx_failure(vx_raw_get_recording(raw, 0, &first->about), raw);
    if (!failure) failure = vx_failure(vx_recording_open(&first->recording, raw, 0, NULL), first->recording);
    if (!failure) failure = vx_failure(vx_recording_get_wells(first->recording, wells, &room), first->recording);
    if (!failure)
        failure = vx_failure(vx_recording_get_well(first->recording, wells[0], &first->channel), first->recording);
    if (!failure)
        failure = vx_failure(vx_recording_get_segment(first->recording, 0, &first->segment), first->recording);
    if (!failure)
        failure =
            vx_failure(vx_recording_read(first->recording, wells[0], VX_TIME_FIRST, VX_TIME_LAST, NULL, &first->count),
                       first->recording);
    first->recordings = info.recordings;
    vx_close(raw);
    return failure;
}

static const char* vx_read_first(vx_first* first, uint16_t* samples) {
    return vx_failure(
        vx_recording_read(first->recording, first->channel.well, VX_TIME_FIRST, VX_TIME_LAST, samples, &first->count),
        first->recording);
}

/* Writes a file with these samples of the well. */
static const char* vx_copy_first(const vx_first* first, const uint16_t* samples, const char* path) {
    vx_writer* writer = NULL;
    vx_file_header file;
    vx_recording_header header;
    const vx_well_info* const channel = &first->channel;
    const int64_t from = first->segment.time_from, to = from + (first->count - 1) * channel->interval;
    const char* failure;
    memset(&file, 0, sizeof file);
    memset(&header, 0, sizeof header);
    file.size = sizeof file;
    file.plate_id = first->plate;
    header.size = sizeof header;
    header.task = first->task;
    header.number = first->about.number;
    header.dose = first->about.dose;
    failure = vx_failure(vx_writer_create(&writer, path, VX_CREATE_REPLACE), writer);
    if (!failure) failure = vx_failure(vx_writer_write_file_header(writer, &file), writer);
    if (!failure)
        failure = vx_failure(vx_writer_begin_recording(writer, &header, &channel->well, &channel->ad_zero,
                                                       &channel->units_per_ad, &channel->interval, 1),
                             writer);
    if (!failure)
        failure = vx_failure(vx_writer_write(writer, channel->well, from, to, channel->interval, samples, first->count),
                             writer);
    if (!failure) failure = vx_failure(vx_writer_finish(writer), writer);
    vx_close(writer);
    return failure;
}
