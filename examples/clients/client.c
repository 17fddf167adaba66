/* Copies a raw data file by the C interface and compares one well of both: client SOURCE COPY
 *
 * Build it with: cc client.c -lvxfileio_c */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <vxfileio.h>

/* Ends the program with the last error of a handle. */
static void fail(int code, const void* handle) {
    char text[500] = "";
    int64_t size = sizeof text;
    vx_last_error(handle, text, &size);
    fprintf(stderr, "error %d: %s\n", code, text);
    exit(1);
}

/* The handle is looked at after the call, which may have made it. */
#define check(call, handle)                        \
    do {                                           \
        const int code_ = (call);                  \
        if (code_ != VX_OK) fail(code_, (handle)); \
    } while (0)

/* Opens the first recording of a file, and reads its first well into a new array. */
static uint16_t* read_first_well(vx_raw* raw, vx_recording** recording, int32_t* well, int64_t* count) {
    int32_t wells[100];
    int64_t room = 100;
    uint16_t* samples;
    check(vx_recording_open(recording, raw, 0, NULL), *recording);
    check(vx_recording_get_wells(*recording, wells, &room), *recording);
    *well = wells[0];
    check(vx_recording_read(*recording, *well, VX_TIME_FIRST, VX_TIME_LAST, NULL, count), *recording);
    samples = (uint16_t*)malloc((size_t)(*count + 1) * sizeof *samples);
    check(vx_recording_read(*recording, *well, VX_TIME_FIRST, VX_TIME_LAST, samples, count), *recording);
    return samples;
}

int main(int argc, char** argv) {
    vx_raw *raw = NULL, *copy = NULL;
    vx_recording *recording = NULL, *copied = NULL;
    vx_writer* writer = NULL;
    vx_raw_info info = {sizeof info, 0, 0, 0};
    vx_recording_info about;
    vx_well_info channel;
    vx_segment_info segment;
    vx_file_header file;
    vx_recording_header header;
    char plate[100], task[100];
    int64_t size = sizeof plate, count, again;
    int32_t well;
    uint16_t *samples, *samples_again;
    if (argc != 3) return 2;

    /* Open and list. */
    check(vx_raw_open(&raw, argv[1]), raw);
    check(vx_raw_get_info(raw, &info), raw);
    check(vx_raw_get_text(raw, VX_RAW_PLATE_ID, plate, &size), raw);
    memset(&about, 0, sizeof about);
    about.size = sizeof about;
    check(vx_raw_get_recording(raw, 0, &about), raw);
    size = sizeof task;
    check(vx_raw_get_task(raw, 0, task, &size), raw);
    printf("plate %s, %d recordings, the first: %s %d\n", plate, (int)info.recordings, task, (int)about.number);

    /* Read a well. */
    samples = read_first_well(raw, &recording, &well, &count);
    printf("well %d: %d samples\n", (int)well, (int)count);

    /* Write a copy of this well. */
    memset(&file, 0, sizeof file);
    file.size = sizeof file;
    file.plate_id = plate;
    memset(&header, 0, sizeof header);
    header.size = sizeof header;
    header.task = task;
    header.number = about.number;
    header.dose = about.dose;
    memset(&channel, 0, sizeof channel);
    channel.size = sizeof channel;
    check(vx_recording_get_well(recording, well, &channel), recording);
    memset(&segment, 0, sizeof segment);
    segment.size = sizeof segment;
    check(vx_recording_get_segment(recording, 0, &segment), recording);
    check(vx_writer_create(&writer, argv[2], VX_CREATE_REPLACE), writer);
    check(vx_writer_write_file_header(writer, &file), writer);
    check(vx_writer_begin_recording(writer, &header, &well, &channel.ad_zero, &channel.units_per_ad, &channel.interval,
                                    1),
          writer);
    check(vx_writer_write(writer, well, segment.time_from, segment.time_from + (count - 1) * channel.interval,
                          channel.interval, samples, count),
          writer);
    check(vx_writer_finish(writer), writer);

    /* Compare. */
    check(vx_raw_open(&copy, argv[2]), copy);
    samples_again = read_first_well(copy, &copied, &well, &again);
    if (again != count || memcmp(samples, samples_again, (size_t)count * sizeof *samples) != 0) return 1;
    printf("the copy is the same\n");
    free(samples), free(samples_again);
    vx_close(recording), vx_close(copied), vx_close(writer), vx_close(copy), vx_close(raw);
    return 0;
}
