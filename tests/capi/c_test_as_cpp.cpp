// The same program as C++, which the sanitizers cover.
#include "c_test.c"
