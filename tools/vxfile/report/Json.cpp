#include "tools/vxfile/report/Json.h"

#include <iostream>
#include <utility>

#include "tools/vxfile/report/Complaint.h"
#include "tools/vxfile/system/ExitStatus.h"

template std::string nlohmann::basic_json<nlohmann::ordered_map>::dump(int, char, bool, error_handler_t) const;

namespace vxfile {

void PrintJson(std::string_view command, CJson files) {
    const CJson document = {{"vxfile", VXFILE_VERSION}, {"command", command}, {"files", std::move(files)}};
    std::cout << document.dump(2, ' ', false, CJson::error_handler_t::replace) << '\n';
}

int RunForJson(std::string_view command, CJson file, const std::function<int()>& work) {
    int status = kTrouble;
    const std::string failure = FailureOf([&] { status = work(); });
    if (failure.empty()) return status;
    file["error"] = failure;
    PrintJson(command, CJson::array({std::move(file)}));
    return kTrouble;
}

}  // namespace vxfile
