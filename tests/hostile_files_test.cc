// Another local account in a shared storage area lays links, hard links,
// its own files, FIFOs and directories where the library keeps its files:
// nothing outside the library's own files is written or truncated, and the
// library keeps running. Needs root, to act as that account.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "support/fixture.h"

using namespace authmng_test;

namespace {

constexpr uid_t kStranger = 65534;  // nobody
const char kDot1xDir[] = "/security/authmanage/dot1x/";

enum Trap { kDanglingLink, kLinkToVictim, kHardLink, kForeignFile, kFifo };

// Lays a trap at path as the stranger, in a child that makes
// async-signal-safe calls only. A hard link is made by root: the kernel
// may keep the stranger from linking a file it cannot write.
void lay(Trap trap, const std::string &path, const std::string &victim) {
    const std::string dangling = victim + ".new";
    pid_t child = fork();
    if (child == 0) {
        int fd = -1;
        bool laid =
            trap == kHardLink
                ? link(victim.c_str(), path.c_str()) == 0
                : setgid(kStranger) == 0 && setuid(kStranger) == 0 &&
                      (trap == kDanglingLink   ? symlink(dangling.c_str(), path.c_str()) == 0
                       : trap == kLinkToVictim ? symlink(victim.c_str(), path.c_str()) == 0
                       : trap == kFifo         ? mkfifo(path.c_str(), 0666) == 0
                                       : (fd = open(path.c_str(), O_WRONLY | O_CREAT, 0666)) >= 0 &&
                                             write(fd, "mine\n", 5) == 5);
        _exit(laid ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0) << path;
}

class HostileFilesTest : public AuthmngTest {
protected:
    void SetUp() override {
        AuthmngTest::SetUp();
        if (geteuid() != 0) GTEST_SKIP() << "needs root to act as another account";
        // Both areas are shared with every account, as /tmp is.
        ASSERT_EQ(chmod(root_dir().c_str(), 0755) | chmod(tmp_dir().c_str(), 01777) |
                      chmod(flash_dir().c_str(), 01777),
                  0);
    }
};

// Each trap at both files the 802.1X writers append to: nothing goes
// through it, the victim (larger than every file limit) keeps every byte,
// the rows stay queued and a debug line names the path. Once the trap is
// gone, the next write carries everything.
TEST_F(HostileFilesTest, TrapsWhereTheFilesBelong) {
    const std::string files[] = {tmp_path(kDot1xDir) + "dot1x_statistic.csv",
                                 flash_path(kDot1xDir) + "dot1x_abnormal.csv"};
    const std::string victim = root_dir() + "/victim";
    write_file_of_size(victim, 700000);
    const std::string before = read_file(victim);
    ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X), 0);
    ASSERT_EQ(
        chmod(tmp_path(kDot1xDir).c_str(), 01777) | chmod(flash_path(kDot1xDir).c_str(), 01777), 0);
    g_authmng_lib_error_dbg = 1;
    for (Trap trap : {kDanglingLink, kLinkToVictim, kHardLink, kForeignFile, kFifo}) {
        SCOPED_TRACE(trap);
        for (const std::string &file : files) lay(trap, file, victim);
        authmng_auth_info_t info = event_record(AUTHMNG_CLIENT_DOT1X, D1X_AUTH, 5);
        authmng_notify_auth_info(&info), authmng_notify_auth_info(&info);
        for (bool trapped : {true, false}) {
            take_syslog();
            write_all(AUTHMNG_CLIENT_DOT1X);
            std::string log = take_syslog();
            for (const std::string &file : files)
                EXPECT_EQ(log.find(file) != std::string::npos, trapped);
            EXPECT_EQ(g_authmng_abnormal_record_num, trapped ? 2u : 0u);
            EXPECT_EQ(g_amg_d1x[0].auth_total - g_amg_d1x_tmp[0].auth_total, trapped ? 2u : 0u);
            const std::string rows = trap == kFifo && trapped ? "" : read_file(files[1]);
            EXPECT_TRUE(trapped ? trap != kForeignFile || rows == "mine\n" : count_lines(rows) == 3)
                << rows;  // untouched, or the header and two rows
            for (const std::string &file : files) ASSERT_EQ(unlink(file.c_str()), 0);
        }
        EXPECT_EQ(read_file(victim), before);
        EXPECT_FALSE(exists(victim + ".new"));
    }
}

// Directories another account made or may fill, where the library's
// directories belong: the creation fails (and with it start-up, as with
// any directory that cannot be made). A link root made to a directory of
// root is followed.
TEST_F(HostileFilesTest, UntrustedDirectories) {
    const std::string security = tmp_path("/security"), elsewhere = root_dir() + "/elsewhere";
    ASSERT_EQ(mkdir(elsewhere.c_str(), 0755), 0);
    const struct {
        bool link;
        mode_t mode;
        uid_t owner;
        int expected;
    } cases[] = {{false, 0777, 0, EPERM},
                 {false, 0755, kStranger, EPERM},
                 {true, 0, kStranger, EPERM},
                 {true, 0, 0, 0}};
    for (const auto &c : cases) {
        ASSERT_EQ(c.link ? symlink(elsewhere.c_str(), security.c_str())
                         : mkdir(security.c_str(), 0) | chmod(security.c_str(), c.mode),
                  0);
        ASSERT_EQ(lchown(security.c_str(), c.owner, c.owner), 0);
        EXPECT_EQ(authmng_create_dir(kDot1xDir, 0), c.expected) << c.mode << " " << c.owner;
        ASSERT_EQ(system(("rm -rf " + security + " " + elsewhere + "/*").c_str()), 0);
    }
}

}  // namespace
