#include "recipe.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace audiogen {

namespace {

std::string Trim(const std::string& s) {
  size_t b = s.find_first_not_of(" \t\r");
  if (b == std::string::npos) return {};
  size_t e = s.find_last_not_of(" \t\r");
  return s.substr(b, e - b + 1);
}

}  // namespace

std::vector<std::string> SplitWords(const std::string& text) {
  std::vector<std::string> out;
  std::string cur;
  for (char c : text) {
    if (c == ' ' || c == '\t' || c == ',' || c == '|') {
      if (!cur.empty()) out.push_back(cur);
      cur.clear();
    } else {
      cur += c;
    }
  }
  if (!cur.empty()) out.push_back(cur);
  return out;
}

bool ParseNumber(const std::string& word, double& out) {
  if (word.empty()) return false;
  char* end = nullptr;
  errno = 0;
  double v = std::strtod(word.c_str(), &end);
  if (errno != 0 || end != word.c_str() + word.size()) return false;
  if (!(v == v) || v > 1e12 || v < -1e12) return false;  // NaN or absurd
  out = v;
  return true;
}

bool Recipe::Parse(const std::string& text, std::string& error) {
  sections_.clear();
  sections_.push_back(RecipeSection{});
  std::istringstream in(text);
  std::string raw;
  int lineNo = 0;
  while (std::getline(in, raw)) {
    ++lineNo;
    size_t hash = raw.find('#');
    std::string line = Trim(hash == std::string::npos ? raw : raw.substr(0, hash));
    if (line.empty()) continue;
    if (line.front() == '[') {
      if (line.back() != ']' || line.size() < 3) {
        error = source + ":" + std::to_string(lineNo) + ": bad section header";
        return false;
      }
      std::string inner = Trim(line.substr(1, line.size() - 2));
      RecipeSection s;
      size_t sp = inner.find_first_of(" \t");
      s.kind = inner.substr(0, sp);
      s.name = sp == std::string::npos ? std::string() : Trim(inner.substr(sp));
      s.line = lineNo;
      sections_.push_back(s);
      continue;
    }
    size_t eq = line.find('=');
    if (eq == std::string::npos) {
      error = source + ":" + std::to_string(lineNo) + ": expected key = value";
      return false;
    }
    RecipeEntry e;
    e.key = Trim(line.substr(0, eq));
    e.value = Trim(line.substr(eq + 1));
    e.line = lineNo;
    if (e.key.empty()) {
      error = source + ":" + std::to_string(lineNo) + ": empty key";
      return false;
    }
    for (const RecipeEntry& old : sections_.back().entries) {
      if (old.key == e.key) {
        error = source + ":" + std::to_string(lineNo) + ": key '" + e.key + "' given twice";
        return false;
      }
    }
    sections_.back().entries.push_back(e);
  }
  return true;
}

bool Recipe::Load(const std::string& path, std::string& error) {
  std::ifstream f(path, std::ios::binary);
  if (!f) {
    error = "cannot open " + path;
    return false;
  }
  std::stringstream ss;
  ss << f.rdbuf();
  source = path;
  return Parse(ss.str(), error);
}

const RecipeEntry* SectionReader::Find(const std::string& key) {
  for (const RecipeEntry& e : s_.entries) {
    if (e.key == key) {
      used_.insert(key);
      return &e;
    }
  }
  return nullptr;
}

bool SectionReader::Has(const std::string& key) const {
  for (const RecipeEntry& e : s_.entries)
    if (e.key == key) return true;
  return false;
}

double SectionReader::Number(const std::string& key, double def) {
  const RecipeEntry* e = Find(key);
  if (!e) return def;
  double v = 0;
  if (!ParseNumber(e->value, v)) {
    if (firstError_.empty())
      firstError_ = source_ + ":" + std::to_string(e->line) + ": '" + key + "' needs a number";
    return def;
  }
  return v;
}

int SectionReader::Int(const std::string& key, int def) {
  double v = Number(key, def);
  if (v != static_cast<double>(static_cast<long long>(v)) || v < -1e9 || v > 1e9) {
    if (firstError_.empty()) firstError_ = source_ + ": '" + key + "' needs a whole number";
    return def;
  }
  return static_cast<int>(v);
}

std::string SectionReader::Text(const std::string& key, const std::string& def) {
  const RecipeEntry* e = Find(key);
  return e ? e->value : def;
}

std::vector<double> SectionReader::Numbers(const std::string& key) {
  std::vector<double> out;
  const RecipeEntry* e = Find(key);
  if (!e) return out;
  for (const std::string& w : SplitWords(e->value)) {
    double v = 0;
    if (!ParseNumber(w, v)) {
      if (firstError_.empty())
        firstError_ = source_ + ":" + std::to_string(e->line) + ": '" + key + "' has a non-number '" + w + "'";
      return {};
    }
    out.push_back(v);
  }
  return out;
}

std::vector<std::string> SectionReader::Words(const std::string& key) {
  const RecipeEntry* e = Find(key);
  return e ? SplitWords(e->value) : std::vector<std::string>{};
}

bool SectionReader::Finish(std::string& error) const {
  if (!firstError_.empty()) {
    error = firstError_;
    return false;
  }
  for (const RecipeEntry& e : s_.entries) {
    if (!used_.count(e.key)) {
      error = source_ + ":" + std::to_string(e.line) + ": unknown key '" + e.key + "'";
      return false;
    }
  }
  return true;
}

}  // namespace audiogen
