// A small XML reader for the map editor's files: elements, attributes, text and
// the five standard entities plus numeric character references. Enough for TMX
// and TSX; no namespaces, no DTDs.
#pragma once
#include <memory>
#include <string>
#include <vector>

struct SXmlNode {
    std::string name;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::vector<std::unique_ptr<SXmlNode>> children;
    std::string text;
    int line = 0;

    const std::string* Attr(const char* key) const;
    std::string AttrOr(const char* key, const char* fallback) const;
    const SXmlNode* Child(const char* childName) const;
    std::vector<const SXmlNode*> Children(const char* childName) const;
    // <properties><property name=.. value=../> as a lookup; nullptr when absent.
    const std::string* Property(const char* propName) const;
};

// Parses a whole document; on failure returns nullptr and sets error ("line N: ...").
std::unique_ptr<SXmlNode> ParseXml(const std::string& text, std::string& error);
