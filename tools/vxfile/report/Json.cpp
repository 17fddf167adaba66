#include "tools/vxfile/report/Json.h"

#include <iostream>
#include <utility>

template class nlohmann::basic_json<nlohmann::ordered_map>;

namespace vxfile {

void PrintJson(std::string_view command, CJson files) {
    const CJson document = {{"vxfile", VXFILE_VERSION}, {"command", command}, {"files", std::move(files)}};
    std::cout << document.dump(2, ' ', false, CJson::error_handler_t::replace) << '\n';
}

}  // namespace vxfile
