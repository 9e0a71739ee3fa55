// The harness's state dump is one JSON object put together from parts: every
// long-lived object with state worth checking from outside writes its own part
// through `void WriteState(StateJson& out) const` (the role, the map, the panels,
// the message line), and CGame::DumpStateJson only assembles them. A new
// subsystem joins the dump by adding one writer and one line there.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

#include <nlohmann/json_fwd.hpp>

// Keys keep the order they were written in, so the dump reads top-down.
using StateJson = nlohmann::ordered_json;

// A game text (GBK bytes, at most maxBytes, ending at the first zero) as a JSON
// string value: ASCII stays as it is and every other byte becomes the character
// of the same number (U+0080 ... U+00FF), so the text is valid UTF-8 and its
// bytes can be read back one by one.
std::string StateText(const char* bytes, size_t maxBytes = SIZE_MAX);
