// Full paths in the two storage areas and directory chains.
#include <cerrno>
#include <cstdlib>
#include <string>

#include "support/fixture.h"

namespace authmng_test {
namespace {

using PathsTest = AuthmngTest;

TEST_F(PathsTest, ATotalOf108CharactersIsTheLimitInBothAreas) {
    const char relative[] = "/security/authmanage/log.txt";  // 28 characters
    const std::string base80 = "/" + std::string(79, 'b');
    const struct {
        const char *base;
        int (*make)(const char *, char *, int);
    } kAreas[] = {{"TMPDIR", authmng_make_vpupath}, {"AUTHMNG_FLASH_HOME", authmng_make_flashpath}};
    char full[109];
    for (const auto &area : kAreas) {
        setenv(area.base, base80.c_str(), 1);
        ASSERT_EQ(area.make(relative, full, 108), 0) << area.base;
        EXPECT_EQ(std::string(full), base80 + relative);
        setenv(area.base, (base80 + "b").c_str(), 1);
        EXPECT_EQ(area.make(relative, full, 108), -1) << area.base;
    }
    unsetenv("TMPDIR");
    EXPECT_EQ(authmng_make_vpupath("/x", full, 108) + authmng_create_dir("/security/", 0), -2);
}

TEST_F(PathsTest, CreatesTheWholeChainOverExistingDirectoriesAndReturnsTheError) {
    ASSERT_EQ(authmng_create_dir("/security/authmanage/dot1x/", 0), 0);
    ASSERT_EQ(authmng_create_dir("/security/authmanage/dot1x/", 1), 0);
    EXPECT_TRUE(exists(flash_path("/security/authmanage/dot1x")));
    write_file(tmp_path("/security/authmanage/dot1x/keep.csv"), "kept\n");
    EXPECT_EQ(authmng_create_dir("/security/authmanage/dot1x/", 0), 0);
    EXPECT_EQ(read_file(tmp_path("/security/authmanage/dot1x/keep.csv")), "kept\n");
    write_file(tmp_path("/security/authmanage/webauth"), "a file, not a directory\n");
    EXPECT_EQ(authmng_create_dir("/security/authmanage/webauth/", 0), ENOTDIR);
}

}  // namespace
}  // namespace authmng_test
