/* Glue between Octave or MATLAB and the C interface: first = vx_copy(source) reads the first well of a file, and
 * first = vx_copy(source, target) writes a copy as well. Build it with mkoctfile --mex, or with mex. */
#include <mex.h>

#include "vx_calls.h"

static void require(const char* failure, vx_first* first) {
    if (failure == NULL) return;
    vx_close(first->recording);
    mexErrMsgIdAndTxt("vxfileio:failure", "%s", failure);
}

void mexFunction(int results, mxArray* result[], int arguments, const mxArray* argument[]) {
    static const char* names[] = {"plate", "recordings", "task", "number", "well", "samples"};
    vx_first first = VX_FIRST_INIT;
    mxArray* samples;
    (void)results;
    if (arguments < 1 || arguments > 2) mexErrMsgIdAndTxt("vxfileio:arguments", "usage: vx_copy(source, target)");
    require(vx_open_first(&first, mxArrayToString(argument[0])), &first);
    samples = mxCreateNumericMatrix((mwSize)first.count, 1, mxUINT16_CLASS, mxREAL);
    require(vx_read_first(&first, (uint16_t*)mxGetData(samples)), &first);
    if (arguments > 1)
        require(vx_copy_first(&first, (const uint16_t*)mxGetData(samples), mxArrayToString(argument[1])), &first);
    vx_close(first.recording);
    result[0] = mxCreateStructMatrix(1, 1, 6, names);
    mxSetField(result[0], 0, "plate", mxCreateString(first.plate));
    mxSetField(result[0], 0, "recordings", mxCreateDoubleScalar((double)first.info.recordings));
    mxSetField(result[0], 0, "task", mxCreateString(first.task));
    mxSetField(result[0], 0, "number", mxCreateDoubleScalar(first.about.number));
    mxSetField(result[0], 0, "well", mxCreateDoubleScalar(first.well.well));
    mxSetField(result[0], 0, "samples", samples);
}
