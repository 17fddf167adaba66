/* Glue between R and the C interface: vx_read(path) returns list(plate, recordings, task, number, well, samples), and
 * vx_copy(source, target) writes a copy. R CMD SHLIB client_r.c builds it. */
#include <R.h>
#include <Rinternals.h>

#include "vx_calls.h"

/* R frees what R_alloc returns, even after an error. */
static uint16_t* read_samples(vx_first* first, SEXP path) {
    uint16_t* samples;
    const char* failure = vx_open_first(first, translateCharUTF8(STRING_ELT(path, 0)));
    if (failure) vx_close(first->recording), error("%s", failure);
    samples = (uint16_t*)R_alloc((size_t)first->count + 1, sizeof *samples);
    failure = vx_read_first(first, samples);
    vx_close(first->recording);
    if (failure) error("%s", failure);
    return samples;
}

SEXP vx_read(SEXP path) {
    const char* names[] = {"plate", "recordings", "task", "number", "well", "samples", ""};
    vx_first first = VX_FIRST_INIT;
    const uint16_t* const samples = read_samples(&first, path);
    SEXP list = PROTECT(mkNamed(VECSXP, names)), values = allocVector(INTSXP, first.count);
    int64_t i;
    SET_VECTOR_ELT(list, 5, values);
    for (i = 0; i < first.count; ++i)
        INTEGER(values)[i] = samples[i];
    SET_VECTOR_ELT(list, 0, mkString(first.plate));
    SET_VECTOR_ELT(list, 1, ScalarInteger((int)first.info.recordings));
    SET_VECTOR_ELT(list, 2, mkString(first.task));
    SET_VECTOR_ELT(list, 3, ScalarInteger(first.about.number));
    SET_VECTOR_ELT(list, 4, ScalarInteger(first.well.well));
    UNPROTECT(1);
    return list;
}

SEXP vx_copy(SEXP source, SEXP target) {
    vx_first first = VX_FIRST_INIT;
    const uint16_t* const samples = read_samples(&first, source);
    const char* const failure = vx_copy_first(&first, samples, translateCharUTF8(STRING_ELT(target, 0)));
    if (failure) error("%s", failure);
    return R_NilValue;
}
