#include "tools/vxfile/shell/catalog/CatalogStore.h"
#include "verify/Failure.h"

namespace vxfile {

std::unique_ptr<CCatalogStore> OpenCatalogStore(const std::string& /*path*/) {
    throw CFailure("This vxfile was built without SQLite; write --csv or --jsonl and import that.");
}

}  // namespace vxfile
