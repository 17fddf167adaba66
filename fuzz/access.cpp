// Reads any bytes as a raw data file through bulk access. Everything must be as CIRawDataReader reads it.
#include "fuzz/Fuzz.h"
#include "tests/access/ReaderTwin.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string path = CFuzzFolder::Path("bulk.vxd");
    WriteBytes(path, Input(data, size));
    const std::string difference = CReaderTwin(path).Difference();
    Require(difference.empty(), difference.c_str());
    return 0;
}
