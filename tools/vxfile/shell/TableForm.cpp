#include "tools/vxfile/shell/TableForm.h"

namespace vxfile {

std::vector<COption> CTableForm::Options(bool hasArrays) {
    std::vector<COption> options = {
        {.names = "--csv", .target = &m_csv, .text = "Text with commas (the default)"},
        {.names = "--tsv", .target = &m_tsv, .text = "Text with tabs", .excludes = {"--csv"}},
        {.names = "--jsonl", .target = &m_jsonLines, .text = "A JSON object per line", .excludes = {"--csv", "--tsv"}},
    };
    if (hasArrays)
        options.push_back({.names = "--npy",
                           .target = &m_npy,
                           .text = "A structured array, for numpy",
                           .excludes = {"--csv", "--tsv", "--jsonl"}});
    options.push_back({.names = "--columns", .target = &m_describes, .text = "Describe the columns instead"});
    options.push_back(
        {.names = "-o,--output", .target = &m_target.path, .text = "Output file; - for standard output (the default)"});
    options.push_back({.names = "--force", .target = &m_target.replace, .text = "Replace an existing file"});
    return options;
}

ETableForm CTableForm::Form() const {
    using enum ETableForm;
    return m_npy ? Npy : m_jsonLines ? JsonLines : m_tsv ? Tsv : Csv;
}

}  // namespace vxfile
