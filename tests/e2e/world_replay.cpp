// The world end to end: the real game, headless, warped onto a map, steered by a
// replayed mouse (replays/world_*.txt); the dumped state and the frames are
// checked.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "characters/role.h"
#include "e2e_util.h"

namespace fs = std::filesystem;

namespace {

struct SRun {
    bool ok = false;       // ran all its frames and ended without a sanitizer report
    nlohmann::json state;  // the dumped state
    std::string output;
};

// Runs the game in a scratch copy of its folder with the harness flags and the
// named replay of tests/e2e/replays/ ("" for none); extra holds --shot etc.
SRun RunGame(const std::string& name, const std::string& warp, int frames, const std::string& replay,
             const std::string& extra = "") {
    const fs::path dir = e2e::CopyGame("world_" + name);
    const std::string replayFlag = replay.empty() ? "" : " --replay '" + e2e::Replay(replay).string() + "'";
    const e2e::Result res = e2e::RunGame(dir, "action=play --headless --uncapped --warp " + warp + " --frames " +
                                                  std::to_string(frames) + replayFlag + " --dump-state state.json " +
                                                  extra);
    SRun r;
    r.state = e2e::ReadState(dir / "state.json");
    r.output = res.out + res.err;
    r.ok = res.out.find("frames=" + std::to_string(frames) + " ") != std::string::npos &&
           r.output.find("Sanitizer") == std::string::npos;
    fs::remove_all(dir);
    return r;
}

// Shots are kept in the test's scratch folder.
fs::path ShotDir() {
    const fs::path dir = fs::current_path() / "world_shots";
    fs::create_directories(dir);
    return dir;
}

// The hero's standing picture size, from the game's own role file.
SPoint StandSize() {
    SRoleFile file;
    if (!LoadRoleFile(std::string(ASHEN_GAME_DIR) + "/data/role.pmg", file)) return {};
    const std::vector<SRoleAction>& actions = file.actions;
    const std::vector<SRoleFrame>& frames = file.frames;
    for (const SRoleAction& a : actions)
        if (std::string(a.name) == "stand" && a.firstFrame >= 0 && size_t(a.firstFrame) < frames.size())
            return SPoint{frames[size_t(a.firstFrame)].width, frames[size_t(a.firstFrame)].height};
    return {};
}

// A field of the dumped state: the top level (object "") or one of its objects;
// null when it is not there.
nlohmann::json Field(const nlohmann::json& state, const std::string& object, const std::string& key) {
    const nlohmann::json* o = &state;
    if (!object.empty()) {
        if (!state.is_object() || !state.contains(object)) return nullptr;
        o = &state[object];
    }
    if (!o->is_object() || !o->contains(key)) return nullptr;
    return (*o)[key];
}

int IntField(const nlohmann::json& state, const std::string& object, const std::string& key) {
    const nlohmann::json v = Field(state, object, key);
    return v.is_number_integer() ? v.get<int>() : -99999;
}

// Cell (i, j)'s box, as the map compiler lays the grid out.
int BoxX(int i, int j) { return 1568 - 32 + (i - j) * 32; }
int BoxY(int i, int j) { return (i + j) * 16; }

}  // namespace

TEST(WorldE2E, MapChangeFrameSequence) {
    // The warp fades out (8 frames), shows the loading message (1), loads (1),
    // fades the loading picture out (8), runs the first playing frame (fade-in
    // start, 1), fades in (8) and plays.
    struct SStep {
        int frames;
        const char* mode;
    } steps[] = {{7, "GS_FADE"}, {8, "GS_MAPMSG"}, {9, "GS_ENTERMAP"}, {10, "GS_FADE"}, {17, "GS_FADE"},
                 {18, "GS_PLAY"}, {19, "GS_FADE"}, {26, "GS_FADE"}, {27, "GS_PLAY"}};
    for (const SStep& s : steps) {
        const SRun r = RunGame("sequence", "main.map", s.frames, "");
        ASSERT_TRUE(r.ok) << r.output;
        EXPECT_EQ(Field(r.state, "", "mode_name"), s.mode) << "after " << s.frames << " frames: " << r.state.dump();
    }
    const SRun r = RunGame("sequence", "main.map", 30, "");
    EXPECT_EQ(Field(r.state, "", "map"), "main.map");
    EXPECT_EQ(Field(r.state, "", "map_name"), "Ashvale");
    EXPECT_EQ(IntField(r.state, "", "music_started"), 1);
    // A new game's hero: (x, y + 32) of the start cell (25, 25) is the bottom-left
    // of its standing picture.
    const SPoint stand = StandSize();
    ASSERT_GT(stand.x, 0);
    EXPECT_EQ(IntField(r.state, "hero", "x"), BoxX(25, 25) + stand.x / 2);
    EXPECT_EQ(IntField(r.state, "hero", "y"), BoxY(25, 25) + 32 - stand.y / 2);
    EXPECT_EQ(IntField(r.state, "hero", "direction"), 5);
    EXPECT_EQ(Field(r.state, "hero", "state"), "stand");
    EXPECT_EQ(IntField(r.state, "hero", "hp"), 100);
    EXPECT_EQ(IntField(r.state, "hero", "attack"), 10);
    EXPECT_EQ(IntField(r.state, "hero", "mp"), 50);
    EXPECT_EQ(IntField(r.state, "camera", "x"), BoxX(25, 25) + stand.x / 2 - 320);
    EXPECT_EQ(IntField(r.state, "camera", "y"), BoxY(25, 25) + 32 - stand.y / 2 - 240);
}

TEST(WorldE2E, HeldLeftButtonRunsTheHeroToThePoint) {
    // Release once to arm world clicks, then hold 100 pixels right of the hero
    // (the screen centre). The camera follows, so the held point keeps moving
    // ahead; after the release the hero runs on to the last point and stops.
    const std::string replay = "world_run.txt";  // release at 32, hold from 34 to 46
    const fs::path shot = ShotDir() / "world_run.png";
    fs::remove(shot);
    const SPoint stand = StandSize();
    SRun held = RunGame("held", "main.map", 44, replay);
    ASSERT_TRUE(held.ok) << held.output;
    EXPECT_EQ(Field(held.state, "hero", "state"), "run") << held.state.dump();
    const SRun r = RunGame("run", "main.map", 90, replay, "--shot 42:" + shot.string());
    ASSERT_TRUE(r.ok) << r.output;
    const int x0 = BoxX(25, 25) + stand.x / 2, y0 = BoxY(25, 25) + 32 - stand.y / 2;
    const int x = IntField(r.state, "hero", "x"), y = IntField(r.state, "hero", "y");
    // 12 held frames at 6 pixels, then the last 100 pixels.
    EXPECT_GE(x, x0 + 100 + 6 * 9) << r.state.dump();
    EXPECT_LE(x, x0 + 100 + 6 * 13) << r.state.dump();
    EXPECT_EQ(y, y0) << r.state.dump();
    EXPECT_EQ(Field(r.state, "hero", "state"), "stand");
    EXPECT_EQ(IntField(r.state, "hero", "direction"), 3);
    EXPECT_EQ(IntField(r.state, "hero", "mp"), 50);  // fewer than 40 running steps
    EXPECT_EQ(IntField(r.state, "camera", "x"), x - 320);
    ASSERT_TRUE(fs::exists(shot));
    EXPECT_GT(fs::file_size(shot), 20000u);  // a drawn village, not a black frame
}

TEST(WorldE2E, WalkingIntoAnExitLoadsTheOtherMap) {
    // Start near Ashvale's east gate and hold the button down-right, onto the exit.
    const std::string replay = "world_exit.txt";
    const fs::path shot = ShotDir() / "world_greywood.png";
    fs::remove(shot);
    const SRun r = RunGame("exit", "main.map:46:23", 110, replay, "--shot 105:" + shot.string());
    ASSERT_TRUE(r.ok) << r.output;
    EXPECT_EQ(Field(r.state, "", "map"), "greywood.map") << r.state.dump();
    EXPECT_EQ(Field(r.state, "", "map_name"), "Greywood");
    EXPECT_EQ(Field(r.state, "", "mode_name"), "GS_PLAY");
    // An exit puts the hero on the target's default start cell, Greywood's crossroads
    // (25, 22), facing down.
    EXPECT_EQ(IntField(r.state, "hero", "x"), BoxX(25, 22));
    EXPECT_EQ(IntField(r.state, "hero", "y"), BoxY(25, 22));
    EXPECT_EQ(IntField(r.state, "hero", "direction"), 5);
    EXPECT_EQ(Field(r.state, "hero", "state"), "stand");
    ASSERT_TRUE(fs::exists(shot));
    EXPECT_GT(fs::file_size(shot), 20000u);
}
