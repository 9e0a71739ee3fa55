// The role animation file: a 2532-byte header, one 3188-byte record per action
// and one 44-byte record per frame, little-endian packed records. Each action
// owns 8 x n consecutive frames, direction by direction (1 = up, clockwise), so
// frame (a, d, k) is first(a) + (d - 1) * n(a) + k. One definition for the
// engine (CRole) and the role tools (rolec, rolegen).
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/types.h"

class CByteReader;

#pragma pack(push, 1)
struct SRoleFileHeader {
    int32_t magic;          // ROLE_FILE_MAGIC
    uint8_t unused1[20];    // the role compiler keeps the look name here
    int32_t frameCount;
    int32_t actionCount;
    uint8_t unused2[2500];
};

struct SRoleAction {
    int32_t unused1;        // the role compiler keeps the action's index here
    char name[52];          // "stand", "walk", "run", "fight", "die", ...
    int32_t framesPerDir;   // n: the action owns 8 x n frames
    uint8_t unused2[3124];
    int32_t firstFrame;     // index of its first frame in the frame table
};

struct SRoleFrame {
    int32_t unused;         // the role compiler keeps the frame's index here
    int32_t width, height;
    char bitmap[32];        // picture in the role pack
};
#pragma pack(pop)

static_assert(sizeof(SRoleFileHeader) == 2532, "role file header is 2532 bytes");
static_assert(sizeof(SRoleAction) == 3188, "role action is 3188 bytes");
static_assert(sizeof(SRoleFrame) == 44, "role frame is 44 bytes");
static_assert(offsetof(SRoleFileHeader, frameCount) == 24 && offsetof(SRoleFileHeader, actionCount) == 28,
              "header layout");
static_assert(offsetof(SRoleAction, name) == 4 && offsetof(SRoleAction, framesPerDir) == 56 &&
                  offsetof(SRoleAction, firstFrame) == 3184,
              "action layout");
static_assert(offsetof(SRoleFrame, width) == 4 && offsetof(SRoleFrame, bitmap) == 12, "frame layout");

constexpr int32_t ROLE_FILE_MAGIC = 8077;
constexpr int ROLE_DIRECTIONS = 8;
constexpr int32_t ROLE_MAX_ACTIONS = 256;
constexpr int32_t ROLE_MAX_FRAMES = 65536;
// A frame is staged on the tile sheet before it is drawn: no side may exceed it.
constexpr int32_t ROLE_FRAME_MAX_W = TILE_SHEET_W;
constexpr int32_t ROLE_FRAME_MAX_H = TILE_SHEET_H;
// The largest role file the engine reads (the counts above, and as many trailing
// bytes again for slack).
constexpr size_t ROLE_FILE_MAX_BYTES = 2 * (sizeof(SRoleFileHeader) + size_t(ROLE_MAX_ACTIONS) * sizeof(SRoleAction) +
                                            size_t(ROLE_MAX_FRAMES) * sizeof(SRoleFrame));

struct SRoleFile {
    SRoleFileHeader header{};
    std::vector<SRoleAction> actions;
    std::vector<SRoleFrame> frames;
};

enum class ERoleCheck {
    // What the engine needs: the magic, counts the file holds (bytes after the
    // frame table are ignored) and frame sizes that fit the staging sheet. Names
    // are cut to their fields.
    Engine,
    // What the role compiler writes, for the tools: also no trailing bytes,
    // names terminated inside their fields, and every action's 8 x n frames
    // (n >= 1) inside the frame table.
    Strict,
};

// Reads a role file image; on failure the reader's error names the action or
// frame and the field.
bool ReadRoleFile(CByteReader& in, SRoleFile& out, ERoleCheck check = ERoleCheck::Engine);
// Reads a role file from the disk (host path) with the engine's checks. error
// (when given) receives the reason, naming the file; missing (when given) tells
// whether the file could not be opened at all.
bool LoadRoleFile(const std::string& hostPath, SRoleFile& out, std::string* error = nullptr,
                  bool* missing = nullptr);
// The file image; the header's counts are taken from the vectors, every other
// byte (the unused fields too) as it is held.
std::vector<uint8_t> RoleFileBytes(const SRoleFile& file);
// Writes a role file with a zero header but for the magic and the counts (tools
// and tests). False on a write failure.
bool WriteRoleFile(const char* hostPath, const std::vector<SRoleAction>& actions,
                   const std::vector<SRoleFrame>& frames);
