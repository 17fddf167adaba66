// The same program as C++, which the sanitizers cover, with threads.
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "c_test.c"
