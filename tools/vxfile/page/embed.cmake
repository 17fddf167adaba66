# Writes a source that holds files as arrays of bytes. Run as a script:
#
#   cmake -DOUTPUT=FILE -DDYGRAPHS=FOLDER -DASSETS=FOLDER -P embed.cmake
#
# The text of each is exactly what the page has between its tags, so the policy of the page can name its hash.

# embed(NAME FILE): adds the definition of one asset.
function(embed name file)
  file(READ ${file} text)
  # A page must not refer to other files, nor a script end its own element.
  string(REGEX REPLACE "\n?/[/*]# sourceMappingURL=[^\n]*" "" text "${text}")
  string(REPLACE "</script" "<\\/script" text "${text}")
  file(WRITE ${OUTPUT}.part "${text}")
  file(SHA256 ${OUTPUT}.part hash)
  file(READ ${OUTPUT}.part bytes HEX)
  file(REMOVE ${OUTPUT}.part)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
  string(REGEX REPLACE "(................................................................................)" "\\1\n" bytes
                       "${bytes}")
  file(APPEND ${OUTPUT} "
const unsigned char k${name}Bytes[] = {
${bytes}};
const CAsset k${name} = {TextOf(k${name}Bytes), \"${hash}\"};
")
endfunction()

file(WRITE ${OUTPUT} "#include \"tools/vxfile/page/Assets.h\"

#include <cstddef>

namespace vxfile::page {

namespace {

template <std::size_t size>
std::string_view TextOf(const unsigned char (&bytes)[size]) {
    return {reinterpret_cast<const char*>(bytes), size};
}

}  // namespace
")
embed(DygraphsScript ${DYGRAPHS}/dygraph.min.js)
embed(DygraphsStyle ${DYGRAPHS}/dygraph.min.css)
embed(DygraphsLicence ${ASSETS}/dygraphs-licence.txt)
embed(PageScript ${ASSETS}/page.js)
embed(IndexScript ${ASSETS}/index.js)
embed(PageStyle ${ASSETS}/page.css)
file(APPEND ${OUTPUT} "
}  // namespace vxfile::page
")
