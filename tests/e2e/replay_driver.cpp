// The replay driver: every file of tests/e2e/replays/ is one test. Besides its
// events a replay names, in comment lines the game ignores, how it is run and
// what the dumped state must say at the end:
//   #! flags --warp main.map --frames 90     the command-line flags of the run
//   #! exit 1                                the exit code (0 when not given)
//   #! expect hero.state stand               a field of the dump (dots go into
//                                            objects) and its value, read as JSON
//                                            when it is JSON and as text otherwise
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "e2e_util.h"

using namespace e2e;

namespace {

struct SReplaySpec {
    std::string flags;
    int exitCode = 0;
    std::vector<std::pair<std::string, std::string>> expects;  // path, value
};

SReplaySpec ReadSpec(const fs::path& file) {
    SReplaySpec spec;
    std::istringstream in(ReadFile(file));
    std::string line;
    while (std::getline(in, line)) {
        if (line.rfind("#! ", 0) != 0) continue;
        std::istringstream ls(line.substr(3));
        std::string word;
        ls >> word;
        std::string rest;
        std::getline(ls, rest);
        rest.erase(0, rest.find_first_not_of(' '));
        if (word == "flags") {
            spec.flags = rest;
        } else if (word == "exit") {
            spec.exitCode = std::stoi(rest);
        } else if (word == "expect") {
            const size_t space = rest.find(' ');
            spec.expects.emplace_back(rest.substr(0, space), space == std::string::npos ? "" : rest.substr(space + 1));
        }
    }
    return spec;
}

// The dump's value at a dotted path; null when it is not there.
nlohmann::json At(const nlohmann::json& state, const std::string& path) {
    const nlohmann::json* v = &state;
    std::istringstream parts(path);
    std::string key;
    while (std::getline(parts, key, '.')) {
        if (!v->is_object() || !v->contains(key)) return nullptr;
        v = &(*v)[key];
    }
    return *v;
}

std::vector<std::string> ReplayNames() {
    std::vector<std::string> names;
    for (const auto& e : fs::directory_iterator(Replay("")))
        if (e.path().extension() == ".txt") names.push_back(e.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

class ReplayFiles : public ::testing::TestWithParam<std::string> {};

}  // namespace

TEST_P(ReplayFiles, RunsAsItsHeaderSays) {
    const fs::path file = Replay(GetParam() + ".txt");
    const SReplaySpec spec = ReadSpec(file);
    ASSERT_FALSE(spec.flags.empty()) << file << " has no '#! flags' line";
    ASSERT_FALSE(spec.expects.empty()) << file << " has no '#! expect' line";
    const fs::path dir = CopyGame("replay_" + GetParam());
    const Result r = RunGame(dir, "action=play --headless --uncapped " + spec.flags + " --replay '" + file.string() +
                                      "' --dump-state state.json",
                             "ASHEN_LAUNCHER_NOEXEC=1");
    EXPECT_EQ(r.exitCode, spec.exitCode) << r.err;
    const nlohmann::json state = ReadState(dir / "state.json");
    ASSERT_TRUE(state.is_object()) << r.err;
    for (const auto& [path, text] : spec.expects) {
        nlohmann::json want = nlohmann::json::parse(text, nullptr, false);
        if (want.is_discarded()) want = text;
        EXPECT_EQ(At(state, path), want) << GetParam() << ": " << path;
    }
    fs::remove_all(dir);
}

INSTANTIATE_TEST_SUITE_P(Replays, ReplayFiles, ::testing::ValuesIn(ReplayNames()),
                         [](const ::testing::TestParamInfo<std::string>& info) { return info.param; });
