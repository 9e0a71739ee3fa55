// The editor's XML files (TMX maps, TSX tilesets) read through pugixml, with the
// lookups the map compiler needs: attributes, children, the character data of an
// element and Tiled's <properties><property name=.. value=../></properties>.
#pragma once
#include <optional>
#include <string>
#include <vector>

#include <pugixml.hpp>

class CXml {
public:
    CXml() = default;
    explicit CXml(pugi::xml_node node) : m_node(node) {}
    explicit operator bool() const { return bool(m_node); }

    std::string Name() const { return m_node.name(); }
    std::optional<std::string> Attr(const char* key) const;
    std::string AttrOr(const char* key, const char* fallback) const;
    CXml Child(const char* name) const { return CXml(m_node.child(name)); }
    std::vector<CXml> Children(const char* name) const;
    // The element's own character data (text and CDATA), joined.
    std::string Text() const;
    // A Tiled property by name; a multi-line string property keeps its value as text.
    std::optional<std::string> Property(const char* name) const;

private:
    pugi::xml_node m_node;
};

// Parses a whole document into doc and gives its root element. On failure returns
// false and sets error to "line N: ...".
bool ParseXml(pugi::xml_document& doc, const std::string& text, CXml& root, std::string& error);
