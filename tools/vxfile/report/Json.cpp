#include "tools/vxfile/report/Json.h"

#include <iostream>
#include <utility>

template std::string nlohmann::basic_json<nlohmann::ordered_map>::dump(int, char, bool, error_handler_t) const;

namespace vxfile {

void PrintJson(std::string_view command, CJson files) {
    const CJson document = {{"vxfile", VXFILE_VERSION}, {"command", command}, {"files", std::move(files)}};
    std::cout << document.dump(2, ' ', false, CJson::error_handler_t::replace) << '\n';
}

}  // namespace vxfile
