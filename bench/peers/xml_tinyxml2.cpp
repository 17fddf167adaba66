// Reads and writes results and settings files with tinyxml2, as whole documents.
#include <tinyxml2.h>

#include "XmlTrees.h"

namespace {

class CDom {
 public:
    using Node = tinyxml2::XMLElement*;

    bool Load(const char* path) { return m_document.LoadFile(path) == tinyxml2::XML_SUCCESS; }
    bool Save(const char* path) { return m_document.SaveFile(path, true) == tinyxml2::XML_SUCCESS; }
    Node Root() { return m_document.RootElement(); }
    Node Child(Node node, const char* name) { return node != nullptr ? node->FirstChildElement(name) : nullptr; }
    Node Next(Node node, const char* name) { return node->NextSiblingElement(name); }
    const char* Text(Node node) {
        const char* const text = node != nullptr ? node->GetText() : nullptr;
        return text != nullptr ? text : "";
    }
    Node AddRoot(const char* name) {
        const Node root = m_document.NewElement(name);
        m_document.InsertEndChild(root);
        return root;
    }
    Node Add(Node parent, const char* name) { return parent->InsertNewChildElement(name); }
    void SetText(Node node, const char* text) { node->SetText(text); }
    void SetSize(Node node, std::size_t size) { node->SetAttribute("Size", static_cast<unsigned>(size)); }

 private:
    tinyxml2::XMLDocument m_document;
};

}  // namespace

int main(int argc, char** argv) { return MainOfXmlPeer<CXmlTrees<CDom>>(argc, argv); }
