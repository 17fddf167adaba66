#include "tools/vxfile/page/Assets.h"
#include "tools/vxfile/page/Sections.h"

namespace vxfile::page {

void WriteFiles(CHtml& html, const CPlateValues& values) {
    html.Element("section", {{"class", "card"}, {"aria-labelledby", "files"}}, [&] {
        html.Element("h2", {{"id", "files"}}, "Files");
        html.Element("table", {{"class", "files"}}, [&] {
            html.Element("tr", {}, [&] {
                for (const char* head : {"File", "Kind", "Size", "State"})
                    html.Element("th", {{"scope", "col"}}, head);
            });
            for (const CFileLine& file : values.files) {
                html.Element("tr", {}, [&] {
                    html.Element("th", {{"scope", "row"}}, file.name);
                    html.Element("td", {}, file.kind);
                    html.Element("td", {}, file.size);
                    html.Element("td", {{"class", file.isSound ? "sound" : "unsound"}}, file.state);
                });
            }
        });
    });
    html.Element("footer", {}, [&] {
        html.Element("p", {{"class", "quiet"}}, "Made by vxfile " VXFILE_VERSION ".");
        html.Element("details", {{"class", "quiet"}}, [&] {
            html.Element("summary", {}, "Licence of dygraphs");
            html.Element("pre", {}, kDygraphsLicence.text);
        });
    });
}

}  // namespace vxfile::page
