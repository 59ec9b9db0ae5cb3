// Another local account in a shared temporary area: links, hard links,
// foreign files, FIFOs and foreign or world-writable directories where the
// library keeps its files. Nothing outside the library's own files is
// written or truncated, and the library keeps running. The traps are laid
// by a child that drops to an unprivileged account, so these cases need
// root.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "support/fixture.h"

using namespace authmng_test;

namespace {

constexpr uid_t kStranger = 65534;  // nobody
const std::string kDot1xDir = "/security/authmanage/dot1x/";
const std::string kStatistic = kDot1xDir + "dot1x_statistic.csv";
const std::string kAbnormal = kDot1xDir + "dot1x_abnormal.csv";

enum class Trap { kDanglingLink, kLinkToVictim, kHardLinkToVictim, kForeignFile, kFifo };

// Lays one trap at path as the stranger (a hard link as root: the kernel
// may keep the stranger from linking a file it cannot write). The child
// makes async-signal-safe calls only, so the library's thread in the parent
// does not matter.
void lay(Trap trap, const std::string &path, const std::string &victim) {
    if (trap == Trap::kHardLinkToVictim) {
        ASSERT_EQ(link(victim.c_str(), path.c_str()), 0);
        return;
    }
    const std::string dangling = victim + ".new";  // made before the fork
    pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        if (setgid(kStranger) != 0 || setuid(kStranger) != 0) _exit(2);
        int laid = -1;
        switch (trap) {
            case Trap::kDanglingLink:
                laid = symlink(dangling.c_str(), path.c_str());
                break;
            case Trap::kLinkToVictim:
                laid = symlink(victim.c_str(), path.c_str());
                break;
            case Trap::kForeignFile: {
                int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0666);
                laid = fd >= 0 && write(fd, "mine\n", 5) == 5 ? 0 : -1;
                break;
            }
            case Trap::kFifo:
                laid = mkfifo(path.c_str(), 0666);
                break;
            default:
                break;
        }
        _exit(laid == 0 ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << path;
}

class HostileFilesTest : public AuthmngTest {
protected:
    void SetUp() override {
        AuthmngTest::SetUp();
        if (geteuid() != 0) GTEST_SKIP() << "needs root to act as another account";
        // Both areas shared with every account, as /tmp is.
        ASSERT_EQ(chmod(root_dir().c_str(), 0755), 0);
        ASSERT_EQ(chmod(tmp_dir().c_str(), 01777), 0);
        ASSERT_EQ(chmod(flash_dir().c_str(), 01777), 0);
    }
    // A root file larger than every file limit, which a followed link would
    // have truncated.
    std::string victim() {
        std::string path = root_dir() + "/victim";
        if (!exists(path)) write_file_of_size(path, 700000);
        return path;
    }
    static void fail_twice() {
        for (int n = 0; n < 2; ++n) {
            authmng_auth_info_t info = event_record(AUTHMNG_CLIENT_DOT1X, D1X_AUTH, 5);
            authmng_notify_auth_info(&info);
        }
    }
    static void write_all() {
        authmng_write_dot1x_statistic_to_tmpfile();
        authmng_write_dot1x_abnormal_record_to_file();
    }
};

// Each trap at both files the writers append to: nothing is written
// through it, the victim keeps every byte, the rows stay queued and a debug
// line names the path; once the trap is gone, the next write carries
// everything.
TEST_F(HostileFilesTest, TrapsWhereTheFilesBelong) {
    const Trap traps[] = {Trap::kDanglingLink, Trap::kLinkToVictim, Trap::kHardLinkToVictim,
                          Trap::kForeignFile, Trap::kFifo};
    for (const std::string &dir : {tmp_path(kDot1xDir), flash_path(kDot1xDir)}) {
        ASSERT_EQ(authmng_create_dir(kDot1xDir.c_str(), dir == flash_path(kDot1xDir)), 0);
        ASSERT_EQ(chmod(dir.c_str(), 01777), 0);
    }
    const std::string files[] = {tmp_path(kStatistic), flash_path(kAbnormal)};
    const std::string before = read_file(victim());
    ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X), 0);
    g_authmng_lib_error_dbg = 1;
    for (Trap trap : traps) {
        SCOPED_TRACE(static_cast<int>(trap));
        for (const std::string &file : files) lay(trap, file, victim());
        fail_twice();
        take_syslog();
        write_all();
        std::string log = take_syslog();
        for (const std::string &file : files) EXPECT_NE(log.find(file), std::string::npos) << log;
        EXPECT_EQ(read_file(victim()), before);
        EXPECT_FALSE(exists(victim() + ".new"));
        EXPECT_EQ(g_authmng_abnormal_record_num, 2u);
        EXPECT_EQ(g_amg_d1x_tmp[0].auth_total, g_amg_d1x[0].auth_total - 2);
        if (trap == Trap::kForeignFile) {
            EXPECT_EQ(read_file(files[1]), "mine\n");
        }
        for (const std::string &file : files) ASSERT_EQ(unlink(file.c_str()), 0);
        write_all();
        EXPECT_EQ(g_authmng_abnormal_record_num, 0u);
        EXPECT_EQ(g_amg_d1x_tmp[0].auth_total, g_amg_d1x[0].auth_total);
        EXPECT_EQ(count_lines(read_file(files[1])), 3u);  // the header and two rows
        for (const std::string &file : files) ASSERT_EQ(unlink(file.c_str()), 0);
    }
}

}  // namespace

// Directories another account made or may fill where the library's
// directories belong: start-up fails at the temporary area as a failed
// creation does. A link root made to a directory of root is followed.
TEST_F(HostileFilesTest, UntrustedDirectoriesFailStartUp) {
    const std::string security = tmp_path("/security");
    const std::string elsewhere = root_dir() + "/elsewhere";
    ASSERT_EQ(mkdir(elsewhere.c_str(), 0755), 0);
    struct Case {
        const char *what;
        int (*lay)(const std::string &security, const std::string &elsewhere);
        int expected;
    } cases[] = {
        {"world-writable, not sticky",
         [](const std::string &dir, const std::string &) {
             return mkdir(dir.c_str(), 0777) | chmod(dir.c_str(), 0777);
         },
         EPERM},
        {"another account's",
         [](const std::string &dir, const std::string &) {
             return mkdir(dir.c_str(), 0755) | chown(dir.c_str(), kStranger, kStranger);
         },
         EPERM},
        {"another account's link",
         [](const std::string &dir, const std::string &target) {
             return symlink(target.c_str(), dir.c_str()) |
                    lchown(dir.c_str(), kStranger, kStranger);
         },
         EPERM},
        {"a file",
         [](const std::string &dir, const std::string &) { return mkfifo(dir.c_str(), 0666); },
         ENOTDIR},
        {"root's link to root's directory",
         [](const std::string &dir, const std::string &target) {
             return symlink(target.c_str(), dir.c_str());
         },
         0},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        ASSERT_EQ(c.lay(security, elsewhere), 0);
        EXPECT_EQ(authmng_create_dir(kDot1xDir.c_str(), 0), c.expected);
        EXPECT_EQ(authmng_create_dir(kDot1xDir.c_str(), 1), 0);
        std::string cleanup = "rm -rf '" + security + "' '" + elsewhere + "'/*";
        ASSERT_EQ(system(cleanup.c_str()), 0);
    }
    ASSERT_EQ(mkdir(security.c_str(), 0777), 0);
    ASSERT_EQ(chown(security.c_str(), kStranger, kStranger), 0);
    EXPECT_EQ(start(AUTHMNG_CLIENT_DOT1X), -1);
    EXPECT_NE(take_syslog().find("Failed to create tmp dot1x dir."), std::string::npos);
}
