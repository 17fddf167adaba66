#include "tools/vxfile/report/Complaint.h"

#include <exception>
#include <iostream>
#include <new>

#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/system/MemoryReserve.h"
#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/base/VXExceptions.h"

using vxfileio::base::CVXExceptions;

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
    std::cerr << "vxfile: " << Readable(sentence) << '\n';  // flushes std::cout first, as it is tied to it
}

}  // namespace vxfile
