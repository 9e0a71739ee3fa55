// Shared main for every test executable. ctest runs test cases of one executable as
// parallel processes that all start in the same folder, so each process moves into a
// scratch folder of its own first: files a test writes under relative names (packs,
// ini files, maps) can then never be overwritten by a neighbour half-way through.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <system_error>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    namespace fs = std::filesystem;
    std::error_code ec;
    const fs::path scratch = fs::current_path(ec) / "scratch" / std::to_string(getpid());
    fs::remove_all(scratch, ec);
    fs::create_directories(scratch, ec);
    if (!ec) fs::current_path(scratch, ec);
    const int rc = RUN_ALL_TESTS();
    fs::current_path(scratch.parent_path().parent_path(), ec);
    fs::remove_all(scratch, ec);
    return rc;
}
