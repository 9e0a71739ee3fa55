// GBK (code page 936) text. Every string in data files, logs, saves and scripts is
// GBK; the engine converts to UTF-8 only to draw. Chinese texts the engine writes
// itself are kept as UTF-8 in the sources and converted with Utf8ToGbk.
#pragma once
#include <string>
#include <string_view>

std::string GbkToUtf8(std::string_view gbk);
std::string Utf8ToGbk(std::string_view utf8);

// A UTF-8 literal as GBK bytes, converted once and kept for the process's life.
const char* GbkText(const char* utf8Literal);
