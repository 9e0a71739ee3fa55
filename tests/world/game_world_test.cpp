// The game's world step: picking characters, the hero's probe against the map
// and the role layer, exits starting a map change, the state dump.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include <nlohmann/json.hpp>

#include "../common/game_fixture.h"
#include "characters/role.h"
#include "resources/vrn_writer.h"
#include "media/graph.h"
#include "shell/game.h"
#include "world/map.h"

namespace fs = std::filesystem;

namespace {

// A 24-bit BMP of w x h: the left half magenta (transparent), the right half red.
std::vector<uint8_t> HalfBmp(int w, int h) {
    const int row = (w * 3 + 3) & ~3;
    std::vector<uint8_t> b(54 + size_t(row) * size_t(h), 0);
    auto put32 = [&b](size_t at, uint32_t v) {
        for (int k = 0; k < 4; ++k) b[at + size_t(k)] = uint8_t(v >> (8 * k));
    };
    b[0] = 'B';
    b[1] = 'M';
    put32(2, uint32_t(b.size()));
    put32(10, 54);
    put32(14, 40);
    put32(18, uint32_t(w));
    put32(22, uint32_t(h));
    b[26] = 1;
    b[28] = 24;
    put32(34, uint32_t(row * h));
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            uint8_t* p = &b[54 + size_t(y) * size_t(row) + size_t(x) * 3];
            if (x < w / 2) {
                p[0] = 255, p[1] = 0, p[2] = 255;  // B, G, R
            } else {
                p[0] = 0, p[1] = 0, p[2] = 255;
            }
        }
    return b;
}

// A game with its display surfaces, a 50 x 50 map with one exit cell and a
// blocked cell, and roles made from a small role file.
class GameWorld : public CGameTest {
protected:
    void SetUp() override {
        CGameTest::SetUp();
        ASSERT_NO_FATAL_FAILURE(BareGame());
        fs::create_directories("data");
        std::vector<SRoleAction> actions(3);
        const char* names[3] = {"stand", "walk", "run"};
        for (int a = 0; a < 3; ++a) {
            std::snprintf(actions[size_t(a)].name, sizeof actions[size_t(a)].name, "%s", names[a]);
            actions[size_t(a)].framesPerDir = 1;
            actions[size_t(a)].firstFrame = 8 * a;
        }
        std::vector<SRoleFrame> frames(24);
        for (SRoleFrame& f : frames) {
            f.width = 40;
            f.height = 80;
            std::strcpy(f.bitmap, "t\\half.bmp");
        }
        ASSERT_TRUE(WriteRoleFile("data/r.rol", actions, frames));
        std::vector<uint8_t> pack;
        std::string error;
        ASSERT_TRUE(BuildVrnArchive({{"t\\half.bmp", HalfBmp(40, 80)}}, VRN_COMPRESS_NEVER, &pack, &error)) << error;
        std::ofstream("data/role.vrn", std::ios::binary).write(reinterpret_cast<const char*>(pack.data()),
                                                              std::streamsize(pack.size()));
        game->m_pGraph->SetPackPath(PACK_ROLE, "data\\role.vrn");

        // Map: all crossable; cell (30, 20) blocked; cell (20, 30) an exit.
        SMapHeader h{};
        std::memcpy(h.magic, "2pam", 4);
        std::strcpy(h.fileName, "main.map");
        std::strcpy(h.displayName, "Ash\"vale");
        h.size = 50;
        h.startX = 25;
        h.startY = 25;
        std::vector<SMapCell> cells(2500);
        for (int i = 0; i < 50; ++i)
            for (int j = 0; j < 50; ++j) {
                SMapCell& c = cells[size_t(i) * 50 + size_t(j)];
                c.x = CellBoxOrigin(i, j).x;
                c.y = CellBoxOrigin(i, j).y;
                c.cross = 1;
            }
        cells[30 * 50 + 20].cross = 0;
        cells[20 * 50 + 30].exit = 1;
        std::ofstream f("map.map", std::ios::binary);
        f.write(reinterpret_cast<const char*>(&h), sizeof h);
        f.write(reinterpret_cast<const char*>(cells.data()), std::streamsize(cells.size() * sizeof(SMapCell)));
        f.close();
        ASSERT_NO_FATAL_FAILURE(
            UseMap("map.map", "[count]\r\ncount=1\r\n[comment]\r\n1=To Greywood\r\n[name]\r\n1=greywood.map\r\n"));
    }
    void TearDown() override {
        if (game) game->m_vecVisibleRoles.clear();
        for (CRole* r : m_npcs) delete r;
        m_npcs.clear();
        CGameTest::TearDown();
    }
    // A role whose picture centre is at (x, y), standing.
    CRole* Role(int x, int y, int id) {
        CRole* r = new CRole("r.rol", id ? "npc" : "hadrin", 0, 0, 1, 10, 0);
        r->m_nNpcId = id;
        r->SetPosition(x, y, 5);
        r->Stand();
        return r;
    }
    void AddHero(int x, int y) {
        game->m_pRole = Role(x, y, 0);
        game->m_vecVisibleRoles.push_back(game->m_pRole);
    }
    CRole* AddNpc(int x, int y) {
        CRole* r = Role(x, y, int(game->m_vecVisibleRoles.size()));
        m_npcs.push_back(r);
        game->m_vecVisibleRoles.push_back(r);
        return r;
    }
    // Paints a role's rectangle opaque on the role layer.
    void Paint(const CRole* r, uint16_t colour = 0x1234) {
        const SRect rc = r->GetRect();
        game->m_pGraph->FillRect(SURF_ROLE, &rc, colour);
    }

    std::vector<CRole*> m_npcs;
};

SPoint Centre(int i, int j) { return SPoint{1568 + (i - j) * 32, (i + j) * 16 + 16}; }

}  // namespace

TEST_F(GameWorld, FindNpcAtPrefersTheLowerRoleAndSkipsTheDead) {
    AddHero(1000, 420);
    CRole* back = AddNpc(1010, 480);
    CRole* front = AddNpc(1020, 490);
    EXPECT_EQ(game->FindNpcAt(1015, 500, 0), 2);  // overlapping: the one lower on screen
    front->SetAction(5, "die", 0);
    EXPECT_EQ(game->FindNpcAt(1015, 500, 0), 1);
    // With flag 1 the hero answers at once, even over a lower NPC.
    EXPECT_EQ(game->FindNpcAt(1000, 455, 1), 0);
    EXPECT_EQ(game->FindNpcAt(1000, 455, 0), 1);
    back->SetPosition(1000, 420, 5);  // equal y: the earlier one stays
    EXPECT_EQ(game->FindNpcAt(1000, 455, 0), 0);
    EXPECT_EQ(game->FindNpcAt(2000, 500, 0), -1);
}

TEST_F(GameWorld, HeroProbeStopsAtBlockedCellsAndVisibleRoles) {
    // Walking onto the blocked cell (30, 20): the probe at the feet decides.
    const SPoint blocked = Centre(30, 20);
    AddHero(blocked.x - 60, blocked.y - 32);
    game->m_pRole->WalkTo(blocked.x + 200, blocked.y - 32, "walk");
    int steps = 0;
    while (std::strcmp(game->m_pRole->GetState(), "walk") == 0 && steps < 100) {
        game->DrawRole();
        ++steps;
    }
    EXPECT_STREQ(game->m_pRole->GetState(), "stand");
    EXPECT_GT(steps, 5);
    EXPECT_LT(game->m_pRole->m_x + 6, blocked.x);
    const SPoint stop = game->m_pRole->GetStepPoint("walk");
    EXPECT_EQ(game->m_pMap->GetCross(stop.x, stop.y), 0);

    // An NPC (its picture: left half transparent, right half red) ahead of the
    // hero blocks only where its picture is drawn on the role layer.
    game->m_vecVisibleRoles.clear();
    delete game->m_pRole;
    AddHero(645, 580);
    CRole* npc = AddNpc(640, 600);
    game->m_pRole->WalkTo(900, 580, "walk");
    SPoint probe = game->m_pRole->GetStepPoint("walk");
    ASSERT_TRUE(npc->GetRect().Contains(probe.x, probe.y));
    game->DrawRole();
    EXPECT_STREQ(game->m_pRole->GetState(), "stand");
    EXPECT_EQ(game->m_pRole->m_x, 645);
    EXPECT_NE(game->m_pGraph->GetSurface(SURF_ROLE)->At(probe.x, probe.y), KEY565);  // the NPC drew itself
    // Through the transparent half the hero walks on.
    game->m_pRole->SetPosition(620, 580, 3);
    game->m_pRole->WalkTo(900, 580, "walk");
    probe = game->m_pRole->GetStepPoint("walk");
    ASSERT_TRUE(npc->GetRect().Contains(probe.x, probe.y));
    game->DrawRole();
    EXPECT_STREQ(game->m_pRole->GetState(), "walk");
    EXPECT_EQ(game->m_pRole->m_x, 623);
    // The hero's picture is drawn at its centre: the red right half.
    EXPECT_NE(game->m_pGraph->GetSurface(SURF_ROLE)->At(623 + 5, 560), KEY565);
    EXPECT_EQ(game->m_pGraph->GetSurface(SURF_ROLE)->At(623 - 5, 530), KEY565);
    // Picking by rectangle finds the NPC under the cursor.
    EXPECT_EQ(game->FindNpcAt(655, 630, 0), 1);
}

TEST_F(GameWorld, AnExitUnderTheProbeStartsTheMapChange) {
    const SPoint exitCell = Centre(20, 30);
    AddHero(exitCell.x - 40, exitCell.y - 32);
    game->m_pRole->WalkTo(exitCell.x + 40, exitCell.y - 32, "run");
    for (int k = 0; k < 20 && game->m_nGameState == GS_PLAY; ++k) game->DrawRole();
    EXPECT_EQ(game->m_nGameState, GS_FADE);
    EXPECT_EQ(game->m_nResumeState, GS_MAPMSG);
    EXPECT_EQ(game->m_strTargetMap, "greywood.map");
    EXPECT_EQ(game->m_nTargetX, -1);
    EXPECT_EQ(game->m_nTargetY, -1);
    EXPECT_EQ(game->m_nTargetFacing, 5);
    EXPECT_EQ(game->m_bTargetNewGame, 0);
    // A standing hero on the exit triggers nothing.
    game->m_nGameState = GS_PLAY;
    game->m_pRole->SetPosition(exitCell.x, exitCell.y - 32, 5);
    game->m_pRole->Stand();
    game->m_strTargetMap.clear();
    game->DrawRole();
    EXPECT_EQ(game->m_nGameState, GS_PLAY);
    EXPECT_TRUE(game->m_strTargetMap.empty());
}

TEST_F(GameWorld, StateDumpFields) {
    AddHero(1572, 788);
    game->m_pRole->m_nMoney = 12;
    game->m_ptCamera = SPoint{1252, 548};
    const nlohmann::json state = nlohmann::json::parse(game->DumpStateJson(), nullptr, false);
    ASSERT_TRUE(state.is_object()) << game->DumpStateJson();
    EXPECT_EQ(state["mode"], 3);
    EXPECT_EQ(state["map"], "main.map");
    EXPECT_EQ(state["map_name"], "Ash\"vale");
    const nlohmann::json expectedHero = {{"x", 1572},     {"y", 788},      {"direction", 5}, {"state", "stand"},
                                         {"hp", 10},      {"max_hp", 10},  {"mp", 50},       {"max_mp", 50},
                                         {"attack", 1},   {"defence", 0},  {"hit_rate", 30}, {"level", 1},
                                         {"exp", 0},      {"next_exp", 100}, {"money", 12},  {"moral", 50}};
    EXPECT_EQ(state["hero"], expectedHero) << state.dump();
    EXPECT_EQ(state["camera"], nlohmann::json({{"x", 1252}, {"y", 548}})) << state.dump();
}
