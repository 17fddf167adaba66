#include "tools/vxfile/io/Failure.h"

#include <exception>
#include <iostream>
#include <new>

#include "tools/vxfile/io/MemoryReserve.h"
#include "tools/vxfile/io/Text.h"
#include "vxfileio/frame/ExcVXReader.h"
#include "vxfileio/frame/VXExceptions.h"

namespace vxfile {

std::string FailureOf(const std::function<void()>& work) try {
    work();
    return {};
} catch (const CExcVXReader& failure) {
    return failure.GetMsg();
} catch (const CVXExceptions& failure) {
    return Readable(failure.message);
} catch (const std::bad_alloc&) {
    KeepMemoryReserve();
    return kNoMemory;
} catch (const std::exception& failure) {
    return failure.what();
}

void Complain(const std::string& sentence) {
    std::cout.flush();
    std::cerr << "vxfile: " << Readable(sentence) << '\n';
}

}  // namespace vxfile
