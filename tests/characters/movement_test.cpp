// Movement: facing sectors, walking, arrival, blocking, the MP cost of running,
// NPC detours and the cheap movement.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "characters/role.h"

namespace fs = std::filesystem;

namespace {

constexpr uint32_t kFree = 0xFFFF0001u;
constexpr uint32_t kBlocked = 0xFFFF0000u;

// A role file with stand (4 frames), walk and run (8 frames) written once.
class Walkers : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        s_old = fs::current_path();
        const fs::path dir = fs::current_path() / ("ashen_walkers_" + std::to_string(getpid()));
        fs::create_directories(dir / "data");
        fs::current_path(dir);
        std::vector<SRoleAction> actions(3);
        const char* names[3] = {"stand", "walk", "run"};
        const int n[3] = {4, 8, 8};
        int first = 0;
        for (int a = 0; a < 3; ++a) {
            std::snprintf(actions[size_t(a)].name, sizeof actions[size_t(a)].name, "%s", names[a]);
            actions[size_t(a)].framesPerDir = n[a];
            actions[size_t(a)].firstFrame = first;
            first += 8 * n[a];
        }
        std::vector<SRoleFrame> frames(static_cast<size_t>(first));
        for (SRoleFrame& f : frames) {
            f.width = 40;
            f.height = 80;
        }
        ASSERT_TRUE(WriteRoleFile("data/walker.rol", actions, frames));
    }
    static void TearDownTestSuite() { fs::current_path(s_old); }
    void SetUp() override { CRole::s_nWalkCounter = 0; }

    static CRole* Make(int x, int y, int npcId = 0) {
        CRole* r = new CRole("walker.rol", "w", 0, 0, 1, 10, 0);
        r->m_nNpcId = npcId;
        r->SetPosition(x, y, 5);
        r->Stand();
        return r;
    }
    static fs::path s_old;
};
fs::path Walkers::s_old;

}  // namespace

TEST_F(Walkers, FaceToSectors) {
    std::unique_ptr<CRole> r(Make(100, 100));
    auto face = [&r](double tx, double ty) {
        r->SetDirection(0);
        r->FaceTo(tx, ty);
        return r->m_nDir;
    };
    EXPECT_EQ(face(100, 50), 1);    // straight up
    EXPECT_EQ(face(100, 150), 5);   // straight down
    EXPECT_EQ(face(110, 102), 3);   // 11.3 degrees below the right
    EXPECT_EQ(face(110, 105), 4);   // 26.6 degrees
    EXPECT_EQ(face(90, 98), 7);     // left, slightly up
    EXPECT_EQ(face(90, 95), 8);
    EXPECT_EQ(face(90, 105), 6);
    EXPECT_EQ(face(110, 95), 2);
    EXPECT_EQ(face(110, 100), 3);
    EXPECT_EQ(face(90, 100), 7);
    EXPECT_EQ(face(101, 150), 5);   // steep: down
    EXPECT_EQ(face(99, 50), 1);
    // The target on the role leaves the direction alone.
    r->SetDirection(6);
    r->FaceTo(100, 100);
    EXPECT_EQ(r->m_nDir, 6);
}

TEST_F(Walkers, WalkToProbeAndSteps) {
    std::unique_ptr<CRole> r(Make(100, 100));
    EXPECT_EQ(r->WalkTo(400, 500, "run"), 1);
    EXPECT_STREQ(r->GetState(), "run");
    EXPECT_EQ(r->m_nDir, 4);
    EXPECT_EQ(r->m_nStep, 0);
    // The probe lies 6 pixels ahead at the feet: (100 + 3.6, 100 + 4.8 + 32).
    const SPoint p = r->GetStepPoint("run");
    EXPECT_EQ(p.x, 103);
    EXPECT_EQ(p.y, 136);
    EXPECT_EQ(r->GetStepPoint("stand").x, -1);
    EXPECT_EQ(r->GetStepPoint("fight").y, -1);
    // One free step of 6 along (300, 400): (3.6, 4.8) truncated.
    r->Update(kFree);
    EXPECT_EQ(r->m_x, 103);
    EXPECT_EQ(r->m_y, 104);
    EXPECT_EQ(r->m_nStep, 1);
    // Walking moves 3.
    r->WalkTo(103, 504, "walk");
    EXPECT_STREQ(r->GetState(), "walk");
    EXPECT_EQ(r->m_nDir, 5);
    r->Update(kFree);
    EXPECT_EQ(r->m_x, 103);
    EXPECT_EQ(r->m_y, 107);
    // The hero keeps animating when told the mode it already has.
    r->m_nStep = 5;
    r->WalkTo(103, 600, "walk");
    EXPECT_EQ(r->m_nStep, 5);
    // A role in "fight" ignores WalkTo.
    r->SetAction(5, "fight", 0);
    EXPECT_EQ(r->WalkTo(0, 0, "run"), 0);
    EXPECT_EQ(r->m_nTargetY, 600);
}

TEST_F(Walkers, ArrivalWithinTheStepAndBlocking) {
    std::unique_ptr<CRole> r(Make(100, 100));
    r->WalkTo(106, 94, "run");  // within 6 on both axes: arrives at once
    r->Update(kFree);
    EXPECT_STREQ(r->GetState(), "stand");
    EXPECT_EQ(r->m_x, 100);
    r->WalkTo(106, 94, "walk");  // 6 > 3: a walk still steps
    r->Update(kFree);
    EXPECT_STREQ(r->GetState(), "walk");
    EXPECT_EQ(r->m_x, 102);
    EXPECT_EQ(r->m_y, 97);
    r->WalkTo(105, 94, "walk");  // now within 3
    r->Update(kFree);
    EXPECT_STREQ(r->GetState(), "stand");
    EXPECT_EQ(CRole::s_nWalkCounter, 1);  // arriving is not a counted step
    // A blocked step stops the hero where it is.
    r->WalkTo(500, 100, "run");
    r->Update(kBlocked);
    EXPECT_STREQ(r->GetState(), "stand");
    EXPECT_EQ(r->m_x, 102);
    EXPECT_EQ(r->m_y, 97);
    // A walk toward the role's own position arrives at once.
    r->WalkTo(102, 97, "walk");
    r->Update(kFree);
    EXPECT_STREQ(r->GetState(), "stand");
}

TEST_F(Walkers, RunningCostsOneMpPerFortySteps) {
    std::unique_ptr<CRole> r(Make(100, 100));
    r->WalkTo(3000, 100, "run");
    for (int i = 0; i < 39; ++i) r->Update(kFree);
    EXPECT_EQ(r->m_nMp, 50);
    r->Update(kFree);
    EXPECT_EQ(r->m_nMp, 49);
    EXPECT_EQ(CRole::s_nWalkCounter, 40);
    for (int i = 0; i < 40; ++i) r->Update(kFree);
    EXPECT_EQ(r->m_nMp, 48);
    EXPECT_EQ(r->m_x, 100 + 80 * 6);
    // Walking steps count but cost nothing.
    r->WalkTo(3000, 100, "walk");
    for (int i = 0; i < 80; ++i) r->Update(kFree);
    EXPECT_EQ(r->m_nMp, 48);
    // Other roles' steps advance the shared counter and so the hero's next payment.
    std::unique_ptr<CRole> npc(Make(500, 500, 3));
    npc->WalkTo(500, 1500, "walk");
    CRole::s_nWalkCounter = 40;
    for (int i = 0; i < 39; ++i) npc->Update(kFree);
    r->WalkTo(3000, 100, "run");
    r->Update(kFree);
    EXPECT_EQ(r->m_nMp, 47);
    // At 0 MP a running hero walks instead, and WalkTo turns "run" into "walk".
    r->m_nMp = 0;
    r->Update(kFree);
    EXPECT_STREQ(r->GetState(), "walk");
    r->Stand();
    r->WalkTo(3000, 100, "run");
    EXPECT_STREQ(r->GetState(), "walk");
    // An NPC may run at 0 MP.
    npc->m_nMp = 0;
    npc->WalkTo(500, 1500, "run");
    EXPECT_STREQ(npc->GetState(), "run");
}

TEST_F(Walkers, NpcsWanderAndDetour) {
    std::srand(7);
    std::unique_ptr<CRole> target(Make(1000, 1000, 2));
    std::unique_ptr<CRole> npc(Make(400, 400, 1));
    // Blocked with a living fight target: facing right, it detours up.
    npc->m_pFightTarget = target.get();
    npc->m_nFightTargetId = 2;
    npc->WalkTo(600, 400, "walk");
    ASSERT_EQ(npc->m_nDir, 3);
    npc->Update(kBlocked);
    EXPECT_EQ(npc->m_nTargetX, 400);
    EXPECT_EQ(npc->m_nTargetY, 300);
    EXPECT_EQ(npc->m_nDetour, 4);
    EXPECT_STREQ(npc->GetState(), "walk");
    // Blocked without a target: a wander point in range.
    npc->m_pFightTarget = nullptr;
    for (int i = 0; i < 50; ++i) {
        npc->Update(kBlocked);
        EXPECT_GE(npc->m_nTargetX, 400 - 200);
        EXPECT_LE(npc->m_nTargetX, 400 + 1199);
        EXPECT_GE(npc->m_nTargetY, 400 - 1199);
        EXPECT_LE(npc->m_nTargetY, 400 + 200);
    }
    // Arriving also picks a wander point instead of standing.
    npc->WalkTo(402, 401, "walk");
    npc->Update(kFree);
    EXPECT_STREQ(npc->GetState(), "walk");
    // The wander point draws r2 before r1.
    std::srand(11);
    const int r2 = std::rand() % 1400, r1 = std::rand() % 1400;
    std::srand(11);
    const SPoint w = npc->WanderPoint();
    EXPECT_EQ(w.x, npc->m_x - 200 + r1);
    EXPECT_EQ(w.y, npc->m_y + 200 - r2);
}

TEST_F(Walkers, SimpleStepAndSetWalk) {
    std::unique_ptr<CRole> npc(Make(400, 400, 1));
    npc->SetDirection(3);
    npc->SetWalk(400, 700, "run");
    EXPECT_STREQ(npc->GetState(), "run");
    EXPECT_EQ(npc->m_nDir, 5);
    // The frame is taken in the direction before facing the target: run, dir 3.
    EXPECT_EQ(npc->m_nFrame, 32 + 64 + 2 * 8);
    npc->SimpleStep(1, 6);
    EXPECT_EQ(npc->m_y, 406);
    EXPECT_EQ(npc->m_nStep, 1);
    npc->SetWalk(400, 410, "walk");
    npc->SimpleStep(1, 3);
    EXPECT_EQ(npc->m_y, 409);
    npc->SimpleStep(1, 3);
    EXPECT_STREQ(npc->GetState(), "stand");
    npc->SimpleStep(0, 3);  // standing: nothing
    EXPECT_STREQ(npc->GetState(), "stand");
    npc->SetWalk(400, 900, "walk");
    npc->SimpleStep(0, 3);  // the way is blocked: off to a wander point
    EXPECT_STREQ(npc->GetState(), "walk");
    EXPECT_EQ(npc->m_nStep, 0);
    EXPECT_EQ(npc->m_y, 409);
}
