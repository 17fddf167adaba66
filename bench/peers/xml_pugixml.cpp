// Reads and writes results and settings files with pugixml, as whole documents.
#include <pugixml.hpp>

#include "XmlTrees.h"

namespace {

class CDom {
 public:
    using Node = pugi::xml_node;

    bool Load(const char* path) { return m_document.load_file(path); }
    bool Save(const char* path) { return m_document.save_file(path, "", pugi::format_raw); }
    Node Root() { return m_document.document_element(); }
    Node Child(Node node, const char* name) { return node.child(name); }
    Node Next(Node node, const char* name) { return node.next_sibling(name); }
    const char* Text(Node node) { return node.child_value(); }
    Node AddRoot(const char* name) { return m_document.append_child(name); }
    Node Add(Node parent, const char* name) { return parent.append_child(name); }
    void SetText(Node node, const char* text) { node.append_child(pugi::node_pcdata).set_value(text); }
    void SetSize(Node node, std::size_t size) { node.append_attribute("Size").set_value(size); }

 private:
    pugi::xml_document m_document;
};

}  // namespace

int main(int argc, char** argv) { return MainOfXmlPeer<CXmlTrees<CDom>>(argc, argv); }
