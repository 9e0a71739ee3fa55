// Recipe files: the readable text sources of every sound effect and piece of music.
//
//   # comment
//   key = value words ...
//   [section name]
//   key = value
//
// Keys before the first section belong to an unnamed section "". Each section keeps its
// entries in file order; lookups report unknown keys so typos in recipes fail the build.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace audiogen {

struct RecipeEntry {
  std::string key;
  std::string value;
  int line = 0;
};

struct RecipeSection {
  std::string kind;   // first word of the header ("layer", "part", "section")
  std::string name;   // rest of the header, trimmed
  int line = 0;
  std::vector<RecipeEntry> entries;
};

class Recipe {
 public:
  // Parses text; on a malformed line returns false and describes it in error.
  bool Parse(const std::string& text, std::string& error);
  bool Load(const std::string& path, std::string& error);

  const std::vector<RecipeSection>& Sections() const { return sections_; }
  std::string source;  // file name for messages

 private:
  std::vector<RecipeSection> sections_;
};

// Typed access to one section with bookkeeping of the keys that were read.
class SectionReader {
 public:
  SectionReader(const RecipeSection& s, const std::string& source) : s_(s), source_(source) {}

  bool Has(const std::string& key) const;
  double Number(const std::string& key, double def);
  int Int(const std::string& key, int def);
  std::string Text(const std::string& key, const std::string& def);
  std::vector<double> Numbers(const std::string& key);
  std::vector<std::string> Words(const std::string& key);

  // After all reads: false (with a message) when a key was never read or a value was bad.
  bool Finish(std::string& error) const;

 private:
  const RecipeEntry* Find(const std::string& key);
  const RecipeSection& s_;
  std::string source_;
  std::set<std::string> used_;
  std::string firstError_;
};

std::vector<std::string> SplitWords(const std::string& text);
bool ParseNumber(const std::string& word, double& out);

}  // namespace audiogen
