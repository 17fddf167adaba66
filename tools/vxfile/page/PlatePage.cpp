#include "tools/vxfile/page/PlatePage.h"

#include "tools/vxfile/page/Assets.h"
#include "tools/vxfile/page/Colours.h"
#include "tools/vxfile/page/Html.h"
#include "tools/vxfile/page/Policy.h"
#include "tools/vxfile/page/Sections.h"

namespace vxfile::page {

namespace {

void WriteDocumentHead(CHtml& html, const CPlateValues& values) {
    html.Element("head", {}, [&] {
        WritePolicy(html, PolicyNameOf(kDygraphsScript) + ' ' + PolicyNameOf(kPageScript));
        html.Element("title", {}, values.compound + (values.plate.empty() ? "" : ", " + values.plate));
        html.Embed("style", kDygraphsStyle.text);
        html.Embed("style", kPageStyle.text);
        html.Embed("style", ColourRules());
        html.Embed("script", kDygraphsScript.text);
        html.Embed("script", kPageScript.text);
    });
}

void WriteBody(CHtml& html, const CPlateValues& values) {
    html.Element("main", {}, [&] {
        WriteHead(html, values);
        WriteOverview(html, values);
        WriteChoices(html, values);
        html.Element("div", {{"class", "row"}}, [&] {
            WriteHeatMaps(html, values);
            WriteDoseResponses(html, values);
        });
        WriteWell(html, values);
        WriteValues(html, values);
        WriteFiles(html, values);
    });
    WriteWellData(html, values);
}

}  // namespace

std::string PlatePage(const CPlateValues& values) {
    CHtml html;
    html.Element("html", {{"lang", "en"}}, [&] {
        WriteDocumentHead(html, values);
        html.Element("body", {}, [&] { WriteBody(html, values); });
    });
    return html.Bytes();
}

}  // namespace vxfile::page
