#include "tools/vxfile/page/Policy.h"

#include <string>

namespace vxfile::page {

void WritePolicy(CHtml& html, std::string_view scripts) {
    const std::string policy = "default-src 'none'; script-src " + std::string(scripts) +
                               "; style-src 'unsafe-inline'; base-uri 'none'; form-action 'none'";
    html.Void("meta", {{"charset", "utf-8"}});
    html.Void("meta", {{"http-equiv", "Content-Security-Policy"}, {"content", policy}});
    html.Void("meta", {{"name", "viewport"}, {"content", "width=device-width, initial-scale=1"}});
}

}  // namespace vxfile::page
