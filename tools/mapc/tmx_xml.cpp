#include "tmx_xml.h"

#include <algorithm>

std::optional<std::string> CXml::Attr(const char* key) const {
    const pugi::xml_attribute a = m_node.attribute(key);
    if (!a) return std::nullopt;
    return std::string(a.value());
}

std::string CXml::AttrOr(const char* key, const char* fallback) const {
    const pugi::xml_attribute a = m_node.attribute(key);
    return a ? std::string(a.value()) : std::string(fallback);
}

std::vector<CXml> CXml::Children(const char* name) const {
    std::vector<CXml> out;
    for (pugi::xml_node c = m_node.child(name); c; c = c.next_sibling(name)) out.emplace_back(c);
    return out;
}

std::string CXml::Text() const {
    std::string out;
    for (pugi::xml_node c = m_node.first_child(); c; c = c.next_sibling())
        if (c.type() == pugi::node_pcdata || c.type() == pugi::node_cdata) out += c.value();
    return out;
}

std::optional<std::string> CXml::Property(const char* name) const {
    for (const CXml& p : Child("properties").Children("property")) {
        if (p.AttrOr("name", "") != name) continue;
        if (auto v = p.Attr("value")) return v;
        return p.Text();
    }
    return std::nullopt;
}

bool ParseXml(pugi::xml_document& doc, const std::string& text, CXml& root, std::string& error) {
    const pugi::xml_parse_result r = doc.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
    if (r) {
        root = CXml(doc.document_element());
        if (root) return true;
        error = "line 1: no root element";
        return false;
    }
    const size_t at = r.offset < 0 ? 0 : std::min(size_t(r.offset), text.size());
    const std::string line = "line " + std::to_string(1 + std::count(text.begin(), text.begin() + std::ptrdiff_t(at), '\n'));
    if (r.status == pugi::status_end_element_mismatch) {
        // Name the closing tag and the element it was meant to close.
        size_t end = at;
        while (end < text.size() && text[end] != '>' && text[end] != ' ' && text[end] != '\t' && text[end] != '\n')
            ++end;
        pugi::xml_node open = doc.document_element();
        while (open.last_child() && open.last_child().type() == pugi::node_element) open = open.last_child();
        error = line + ": </" + text.substr(at, end - at) + "> closes <" + open.name() + ">";
    } else {
        error = line + ": " + r.description();
    }
    return false;
}
