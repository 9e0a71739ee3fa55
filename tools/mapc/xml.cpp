#include "xml.h"

#include <cctype>
#include <cstdlib>
#include <cstring>

const std::string* SXmlNode::Attr(const char* key) const {
    for (const auto& a : attributes)
        if (a.first == key) return &a.second;
    return nullptr;
}

std::string SXmlNode::AttrOr(const char* key, const char* fallback) const {
    const std::string* v = Attr(key);
    return v ? *v : std::string(fallback);
}

const SXmlNode* SXmlNode::Child(const char* childName) const {
    for (const auto& c : children)
        if (c->name == childName) return c.get();
    return nullptr;
}

std::vector<const SXmlNode*> SXmlNode::Children(const char* childName) const {
    std::vector<const SXmlNode*> out;
    for (const auto& c : children)
        if (c->name == childName) out.push_back(c.get());
    return out;
}

const std::string* SXmlNode::Property(const char* propName) const {
    const SXmlNode* props = Child("properties");
    if (!props) return nullptr;
    for (const SXmlNode* p : props->Children("property")) {
        const std::string* n = p->Attr("name");
        if (n && *n == propName) {
            if (const std::string* v = p->Attr("value")) return v;
            return &p->text;  // multi-line string properties keep their value as text
        }
    }
    return nullptr;
}

namespace {

struct SParser {
    const std::string& s;
    size_t pos = 0;
    int line = 1;
    std::string error;

    bool Fail(const std::string& what) {
        if (error.empty()) error = "line " + std::to_string(line) + ": " + what;
        return false;
    }
    bool AtEnd() const { return pos >= s.size(); }
    void Advance(size_t n) {
        for (size_t i = 0; i < n && pos < s.size(); ++i, ++pos)
            if (s[pos] == '\n') ++line;
    }
    bool StartsWith(const char* t) const { return s.compare(pos, std::strlen(t), t) == 0; }
    void SkipSpace() {
        while (!AtEnd() && (s[pos] == ' ' || s[pos] == '\t' || s[pos] == '\r' || s[pos] == '\n')) Advance(1);
    }
    bool SkipUntil(const char* t) {
        size_t at = s.find(t, pos);
        if (at == std::string::npos) return Fail(std::string("missing ") + t);
        Advance(at - pos + std::strlen(t));
        return true;
    }
    static bool NameChar(char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '-' || c == '.' || c == ':' ||
               static_cast<unsigned char>(c) >= 0x80;
    }
    std::string Name() {
        size_t start = pos;
        while (!AtEnd() && NameChar(s[pos])) Advance(1);
        return s.substr(start, pos - start);
    }
    bool Decode(const std::string& raw, std::string& out) {
        out.clear();
        for (size_t i = 0; i < raw.size(); ++i) {
            if (raw[i] != '&') {
                out += raw[i];
                continue;
            }
            size_t semi = raw.find(';', i);
            if (semi == std::string::npos) return Fail("unterminated entity");
            std::string ent = raw.substr(i + 1, semi - i - 1);
            if (ent == "amp") out += '&';
            else if (ent == "lt") out += '<';
            else if (ent == "gt") out += '>';
            else if (ent == "quot") out += '"';
            else if (ent == "apos") out += '\'';
            else if (!ent.empty() && ent[0] == '#') {
                unsigned long cp = ent.size() > 1 && (ent[1] == 'x' || ent[1] == 'X')
                                       ? std::strtoul(ent.c_str() + 2, nullptr, 16)
                                       : std::strtoul(ent.c_str() + 1, nullptr, 10);
                if (cp == 0 || cp > 0x10FFFF) return Fail("bad character reference &" + ent + ";");
                if (cp < 0x80) {
                    out += char(cp);
                } else if (cp < 0x800) {
                    out += char(0xC0 | (cp >> 6));
                    out += char(0x80 | (cp & 0x3F));
                } else if (cp < 0x10000) {
                    out += char(0xE0 | (cp >> 12));
                    out += char(0x80 | ((cp >> 6) & 0x3F));
                    out += char(0x80 | (cp & 0x3F));
                } else {
                    out += char(0xF0 | (cp >> 18));
                    out += char(0x80 | ((cp >> 12) & 0x3F));
                    out += char(0x80 | ((cp >> 6) & 0x3F));
                    out += char(0x80 | (cp & 0x3F));
                }
            } else {
                return Fail("unknown entity &" + ent + ";");
            }
            i = semi;
        }
        return true;
    }
    // Skips declarations, comments and processing instructions before an element.
    bool SkipMisc() {
        for (;;) {
            SkipSpace();
            if (StartsWith("<?")) {
                if (!SkipUntil("?>")) return false;
            } else if (StartsWith("<!--")) {
                if (!SkipUntil("-->")) return false;
            } else if (StartsWith("<!")) {
                if (!SkipUntil(">")) return false;
            } else {
                return true;
            }
        }
    }
    std::unique_ptr<SXmlNode> Element(int depth) {
        if (depth > 64) {
            Fail("elements nested too deeply");
            return nullptr;
        }
        if (AtEnd() || s[pos] != '<') {
            Fail("expected an element");
            return nullptr;
        }
        auto node = std::make_unique<SXmlNode>();
        node->line = line;
        Advance(1);
        node->name = Name();
        if (node->name.empty()) {
            Fail("element without a name");
            return nullptr;
        }
        for (;;) {
            SkipSpace();
            if (AtEnd()) {
                Fail("unterminated tag <" + node->name + ">");
                return nullptr;
            }
            if (StartsWith("/>")) {
                Advance(2);
                return node;
            }
            if (s[pos] == '>') {
                Advance(1);
                break;
            }
            std::string key = Name();
            if (key.empty()) {
                Fail("bad attribute in <" + node->name + ">");
                return nullptr;
            }
            SkipSpace();
            if (AtEnd() || s[pos] != '=') {
                Fail("attribute " + key + " without a value");
                return nullptr;
            }
            Advance(1);
            SkipSpace();
            if (AtEnd() || (s[pos] != '"' && s[pos] != '\'')) {
                Fail("attribute " + key + " not quoted");
                return nullptr;
            }
            char q = s[pos];
            Advance(1);
            size_t end = s.find(q, pos);
            if (end == std::string::npos) {
                Fail("unterminated attribute " + key);
                return nullptr;
            }
            std::string value;
            if (!Decode(s.substr(pos, end - pos), value)) return nullptr;
            Advance(end - pos + 1);
            node->attributes.emplace_back(key, value);
        }
        // Content.
        for (;;) {
            if (AtEnd()) {
                Fail("missing </" + node->name + ">");
                return nullptr;
            }
            if (StartsWith("</")) {
                Advance(2);
                std::string closing = Name();
                SkipSpace();
                if (closing != node->name || AtEnd() || s[pos] != '>') {
                    Fail("</" + closing + "> closes <" + node->name + ">");
                    return nullptr;
                }
                Advance(1);
                return node;
            }
            if (StartsWith("<!--")) {
                if (!SkipUntil("-->")) return nullptr;
                continue;
            }
            if (StartsWith("<![CDATA[")) {
                Advance(9);
                size_t end = s.find("]]>", pos);
                if (end == std::string::npos) {
                    Fail("unterminated CDATA");
                    return nullptr;
                }
                node->text += s.substr(pos, end - pos);
                Advance(end - pos + 3);
                continue;
            }
            if (s[pos] == '<') {
                auto child = Element(depth + 1);
                if (!child) return nullptr;
                node->children.push_back(std::move(child));
                continue;
            }
            size_t end = s.find('<', pos);
            if (end == std::string::npos) end = s.size();
            std::string text;
            if (!Decode(s.substr(pos, end - pos), text)) return nullptr;
            node->text += text;
            Advance(end - pos);
        }
    }
};

}  // namespace

std::unique_ptr<SXmlNode> ParseXml(const std::string& text, std::string& error) {
    SParser p{text};
    if (!p.SkipMisc()) {
        error = p.error;
        return nullptr;
    }
    auto root = p.Element(0);
    if (!root) error = p.error;
    return root;
}
