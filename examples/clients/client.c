/* Copies a well of a raw data file by the C interface and compares: client SOURCE COPY (cc client.c -lvxfileio_c) */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <vxfileio.h>

/* Ends the program with the last error of a handle. */
static void fail(const void* handle) {
    char text[500] = "out of memory";
    int64_t size = sizeof text;
    vx_last_error(handle, text, &size);
    fprintf(stderr, "%s\n", text);
    exit(1);
}

int main(int argc, char** argv) {
    vx_raw_info info = VX_RAW_INFO_INIT;
    vx_recording_info about = VX_RECORDING_INFO_INIT;
    vx_segment_info first = VX_SEGMENT_INFO_INIT;
    vx_well_info well = VX_WELL_INFO_INIT;
    vx_file_header file = VX_FILE_HEADER_INIT;
    vx_recording_header header = VX_RECORDING_HEADER_INIT;
    char plate[100], task[100];
    int64_t plate_size = sizeof plate, task_size = sizeof task, count = 0, end;
    vx_raw *raw = NULL, *copy = NULL;
    vx_recording *recording = NULL, *copied = NULL;
    vx_writer* writer = NULL;
    if (argc != 3) return 2;

    /* List what the file has. */
    if (vx_raw_open(&raw, argv[1]) || vx_raw_get_info(raw, &info) || vx_raw_get_recording(raw, 0, &about) ||
        vx_raw_get_text(raw, VX_RAW_PLATE_ID, plate, &plate_size) || vx_raw_get_task(raw, 0, task, &task_size))
        fail(raw);
    printf("plate %s, %d recordings, the first: %s %d\n", plate, (int)info.recordings, task, (int)about.number);

    /* Read the well of the first segment. */
    if (vx_recording_open(&recording, raw, 0, NULL) || vx_recording_get_segment(recording, 0, &first) ||
        vx_recording_get_well(recording, first.well, &well) ||
        vx_recording_read(recording, well.well, VX_TIME_FIRST, VX_TIME_LAST, NULL, &count))
        fail(recording);
    uint16_t* const samples = (uint16_t*)malloc((size_t)count * sizeof *samples);
    if (vx_recording_read(recording, well.well, VX_TIME_FIRST, VX_TIME_LAST, samples, &count)) fail(recording);
    printf("well %d: %d samples\n", (int)well.well, (int)count);

    /* Write a copy. */
    file.plate_id = plate;
    header.task = task;
    header.number = about.number;
    header.dose = about.dose;
    end = first.time_from + (count - 1) * well.interval;
    if (vx_writer_create(&writer, argv[2], VX_CREATE_REPLACE) || vx_writer_write_file_header(writer, &file) ||
        vx_writer_begin_recording(writer, &header, &well.well, &well.ad_zero, &well.units_per_ad, &well.interval, 1) ||
        vx_writer_write(writer, well.well, first.time_from, end, well.interval, samples, count) ||
        vx_writer_finish(writer))
        fail(writer);

    /* Compare. */
    uint16_t* const again = (uint16_t*)malloc((size_t)count * sizeof *again);
    if (vx_raw_open(&copy, argv[2])) fail(copy);
    if (vx_recording_open(&copied, copy, 0, NULL) ||
        vx_recording_read(copied, well.well, VX_TIME_FIRST, VX_TIME_LAST, again, &count))
        fail(copied);
    if (memcmp(samples, again, (size_t)count * sizeof *samples) != 0) return 1;
    printf("the copy is the same\n");
    free(samples), free(again);
    vx_close(recording), vx_close(copied), vx_close(writer), vx_close(copy), vx_close(raw);
    return 0;
}
