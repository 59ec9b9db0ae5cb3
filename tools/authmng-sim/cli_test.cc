// The simulator as a user runs it: options, exit statuses, error messages,
// and a built-in day written out as a trace and replayed to the same files.
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "support/fixture.h"

namespace {

using authmng_test::occurrences;
using authmng_test::read_file;

class SimCliTest : public authmng_test::AuthmngTest {
protected:
    void SetUp() override {
        AuthmngTest::SetUp();
        root_ = root_dir();
    }

    // Runs the simulator with arguments and input; its exit status, output
    // and errors.
    int run(const std::string &args, const std::string &input = "") {
        std::string in = root_ + "/stdin";
        FILE *f = fopen(in.c_str(), "w");
        fputs(input.c_str(), f);
        fclose(f);
        std::string command = std::string("TZ=UTC ") + AUTHMNG_SIM_PATH + " " + args + " >" +
                              root_ + "/stdout 2>" + root_ + "/stderr <" + in;
        int status = system(command.c_str());
        out_ = read_file(root_ + "/stdout");
        err_ = read_file(root_ + "/stderr");
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string root_;
    std::string out_;
    std::string err_;
};

TEST_F(SimCliTest, OptionsAndTheirErrors) {
    EXPECT_EQ(run("--help"), 0);
    EXPECT_NE(out_.find("usage: authmng-sim"), std::string::npos);
    EXPECT_EQ(run("--client radius"), 2);
    EXPECT_NE(err_.find("--client: 'radius' is not dot1x, webauth or cpp"), std::string::npos);
    EXPECT_EQ(run("--users 0"), 2);
    EXPECT_EQ(run("--start yesterday"), 2);
    EXPECT_EQ(run("extra"), 2);
}

TEST_F(SimCliTest, BadTraceLinesAreSkippedWithTheirLineAndField) {
    std::string trace = root_ + "/trace.txt";
    authmng_test::write_file(trace,
                             "# two good lines and two bad ones\n"
                             "2026-03-09T08:00:00 dot1x-auth auth_time=300\n"
                             "+1 dot1x-auth auth_time=fast\n"
                             "+1 dot1x-offline offline_reason=0\n"
                             "+1 dot1x-teleport\n");
    EXPECT_EQ(run("--out " + root_ + "/out --trace " + trace), 1);
    EXPECT_NE(err_.find("trace.txt:3: field 'auth_time': not an unsigned 32-bit number: 'fast'"),
              std::string::npos)
        << err_;
    EXPECT_NE(err_.find("trace.txt:5: unknown kind 'dot1x-teleport'"), std::string::npos);
    EXPECT_NE(out_.find("events: dot1x-auth 1, dot1x-offline 1, total 2"), std::string::npos)
        << out_;

    EXPECT_EQ(run("--strict --out " + root_ + "/out2 --trace " + trace), 1);
    EXPECT_NE(err_.find("trace.txt:3:"), std::string::npos);
    EXPECT_EQ(err_.find("trace.txt:5:"), std::string::npos) << "stops at the first bad line";
}

TEST_F(SimCliTest, ASecondRunIntoTheSameFolderNeedsAppend) {
    std::string out = " --hours 0.6 --quiet --out " + root_ + "/out";
    ASSERT_EQ(run(out + " --debug"), 0) << err_;
    EXPECT_NE(err_.find("AUTHMNG_LIB_EVENT_DBG: [authmng_timer_proc line:"), std::string::npos)
        << "--debug shows the replay's own debug lines";
    std::string first = read_file(root_ + "/out/tmp/security/authmanage/dot1x/dot1x_statistic.csv");
    EXPECT_EQ(run(out), 2);
    EXPECT_NE(err_.find("is not empty: this run's rows would be appended to the files there. "
                        "Choose an empty folder, remove it, or give --append.\n"),
              std::string::npos);
    ASSERT_EQ(run(out + " --append"), 0) << err_;
    std::string both = read_file(root_ + "/out/tmp/security/authmanage/dot1x/dot1x_statistic.csv");
    EXPECT_EQ(both.size(), 2 * first.size() - first.find('\n') - 1) << "rows added, no header";
}

TEST_F(SimCliTest, ThePromptOffersTheConfigurationWordsAndARefusedCmdFailsTheRun) {
    ASSERT_EQ(run("--client webauth --hours 0.1 -i --out " + root_ +
                      "/out --cmd 'show webauth authmng nonsense'",
                  "?\nauthmanage user-escape ?\nauthmanage user-escape time 31\nexit\n"),
              1)
        << err_;
    EXPECT_NE(out_.find("  authmanage            config authmanage\n"), std::string::npos) << out_;
    EXPECT_NE(out_.find("  time                  escape time\n"), std::string::npos) << out_;
    // The day's own "authmanage user-escape enable" and the three lines typed.
    EXPECT_NE(out_.find("commands: 4 run, 1 refused"), std::string::npos) << out_;
}

TEST_F(SimCliTest, AWrittenDayReplaysToTheSameFiles) {
    for (const char *client : {"dot1x", "webauth"}) {
        std::string day = root_ + "/" + client;
        std::string common = std::string(" --client ") + client + " --hours 2 --start " +
                             "2026-03-09T00:30:00 --seed 7 --users 50 --quiet";
        ASSERT_EQ(run(common + " --write-trace " + day + ".trace"), 0) << err_;
        ASSERT_EQ(run(common + " --out " + day + "-direct"), 0) << err_;
        ASSERT_EQ(
            run(std::string("--client ") + client + " --start 2026-03-09T00:30:00 " +
                "--until 2026-03-09T02:30:00 --out " + day + "-replay --trace " + day + ".trace"),
            0)
            << err_;
        EXPECT_GE(occurrences(out_, " bytes\n"), 2u) << out_;
        EXPECT_EQ(system(("diff -r " + day + "-direct " + day + "-replay").c_str()), 0) << client;
    }
}

}  // namespace
