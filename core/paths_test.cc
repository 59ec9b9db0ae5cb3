// Full paths in the two storage areas and directory chains.
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "support/fixture.h"

namespace authmng_test {
namespace {

using PathsTest = AuthmngTest;

TEST_F(PathsTest, TemporaryPathIsBasePlusRelative) {
    setenv("TMPDIR", "/tmp", 1);
    char full[109];
    ASSERT_EQ(authmng_make_vpupath("/security/authmanage/cpp/cpp.csv", full, 108), 0);
    EXPECT_STREQ(full, "/tmp/security/authmanage/cpp/cpp.csv");
}

TEST_F(PathsTest, ATotalOf108CharactersIsTheLimit) {
    const std::string relative = "/security/authmanage/log.txt";  // 28 characters
    ASSERT_EQ(relative.size(), 28u);
    char full[109];
    std::string base80 = "/" + std::string(79, 'b');
    setenv("TMPDIR", base80.c_str(), 1);
    ASSERT_EQ(authmng_make_vpupath(relative.c_str(), full, 108), 0);
    EXPECT_EQ(std::string(full), base80 + relative);
    setenv("TMPDIR", (base80 + "b").c_str(), 1);
    EXPECT_EQ(authmng_make_vpupath(relative.c_str(), full, 108), -1);

    setenv("AUTHMNG_FLASH_HOME", base80.c_str(), 1);
    ASSERT_EQ(authmng_make_flashpath(relative.c_str(), full, 108), 0);
    EXPECT_EQ(std::string(full), base80 + relative);
    setenv("AUTHMNG_FLASH_HOME", (base80 + "b").c_str(), 1);
    EXPECT_EQ(authmng_make_flashpath(relative.c_str(), full, 108), -1);
}

TEST_F(PathsTest, MissingBasesAndArgumentsAreRefused) {
    char full[109];
    unsetenv("TMPDIR");
    EXPECT_EQ(authmng_make_vpupath("/x", full, 108), -1);
    EXPECT_EQ(authmng_create_dir("/security/authmanage/dot1x/", 0), -1);
    setenv("TMPDIR", tmp_dir().c_str(), 1);
    EXPECT_EQ(authmng_make_vpupath(nullptr, full, 108), -1);
    EXPECT_EQ(authmng_make_vpupath("/x", nullptr, 108), -1);
}

TEST_F(PathsTest, CreatesTheWholeChainAndPassesOverExistingDirectories) {
    ASSERT_EQ(authmng_create_dir("/security/authmanage/dot1x/", 0), 0);
    ASSERT_EQ(authmng_create_dir("/security/authmanage/dot1x/", 1), 0);
    EXPECT_TRUE(exists(tmp_path("/security/authmanage/dot1x")));
    EXPECT_TRUE(exists(flash_path("/security/authmanage/dot1x")));
    write_file(tmp_path("/security/authmanage/dot1x/keep.csv"), "kept\n");
    EXPECT_EQ(authmng_create_dir("/security/authmanage/dot1x/", 0), 0);
    EXPECT_EQ(read_file(tmp_path("/security/authmanage/dot1x/keep.csv")), "kept\n");
}

TEST_F(PathsTest, ReturnsTheErrorOfTheFailedCreation) {
    ASSERT_EQ(authmng_create_dir("/security/", 0), 0);
    write_file(tmp_path("/security/authmanage"), "a file, not a directory\n");
    EXPECT_EQ(authmng_create_dir("/security/authmanage/dot1x/", 0), ENOTDIR);
}

}  // namespace
}  // namespace authmng_test
