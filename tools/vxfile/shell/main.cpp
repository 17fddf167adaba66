#include "tools/vxfile/shell/Program.h"

int main(int argc, char** argv) { return vxfile::RunProgram(argc, argv); }
