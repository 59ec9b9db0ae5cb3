// The show commands of the two daemons as an operator types them. Each
// line must run the display its command names, so what it prints is
// compared with what that display prints when called directly (the
// display texts are the displays' own tests). Also the "?" listings, which
// leave out the hidden (attribute 18) keywords.
#include "cli/cli_fixture.h"
#include "core/lock.h"

namespace authmng_test {
namespace {

class ShowCommandsTest : public CliTest {
protected:
    template <typename Display>
    std::string printed_by(Display display) {
        take_cli();
        display();
        return take_cli();
    }

    void expect_runs(const std::string &line, const std::string &expected) {
        EXPECT_EQ(exec(line), 0) << line;
        EXPECT_EQ(take_cli(), expected) << line;
    }
};

TEST_F(ShowCommandsTest, Dot1xLinesRunTheirDisplayWithMethodOrFilter) {
    start_client(AUTHMNG_CLIENT_DOT1X);
    {  // 802.1X and MAB records that differ, so a wrong method shows
        authmng::LibraryLock lock;
        g_amg_d1x[AUTHMNG_METHOD_DOT1X].auth_result[1] = 2;
        g_amg_d1x[AUTHMNG_METHOD_MAB].reauth_result[4] = 3;
        g_amg_d1x[AUTHMNG_METHOD_MAB].offline_reason[1] = 1;
    }
    for (uint32_t event : {D1X_AUTH, D1X_REAUTH, D1X_OFFLINE}) {
        authmng_auth_info_t info = event_record(AUTHMNG_CLIENT_DOT1X, event, 1);
        authmng_record_abnormal_auth(&info);
    }
    // The display and its argument without and with "mab": the method, or
    // for the abnormal list the event kind, whatever the method.
    const struct {
        const char *words;
        void (*display)(uint32_t);
        uint32_t plain, mab;
    } kLines[] = {
        {"statistic", authmng_show_dot1x_statistic, 0, 1},
        {"statistic telnet", authmng_show_dot1x_statistic_telnet, 0, 1},
        {"statistic fail", authmng_show_dot1x_statistic_fail, 0, 1},
        {"statistic auth-detail", authmng_show_dot1x_auth_detail, 0, 1},
        {"statistic reauth-detail", authmng_show_dot1x_reauth_detail, 0, 1},
        {"statistic offline-detail", authmng_show_dot1x_offline_detail, 0, 1},
        {"abnormal", authmng_show_dot1x_statistic_abnormal, 5, 5},
        {"abnormal auth", authmng_show_dot1x_statistic_abnormal, D1X_AUTH, D1X_AUTH},
        {"abnormal reauth", authmng_show_dot1x_statistic_abnormal, D1X_REAUTH, D1X_REAUTH},
        {"abnormal offline", authmng_show_dot1x_statistic_abnormal, D1X_OFFLINE, D1X_OFFLINE},
    };
    for (const auto &c : kLines) {
        expect_runs(std::string("show authmng ") + c.words,
                    printed_by([&] { c.display(c.plain); }));
        expect_runs(std::string("show authmng mab ") + c.words,
                    printed_by([&] { c.display(c.mab); }));
    }
}

TEST_F(ShowCommandsTest, WebauthLinesRunTheirDisplayAndNo8021xLines) {
    start_client(AUTHMNG_CLIENT_WBA);
    g_authmng_webauth.auth_total = 4;
    expect_runs("show authmng statistic", printed_by(authmng_show_webauth_statistic));
    expect_runs("show authmng statistic telnet", printed_by(authmng_show_webauth_statistic_telnet));
    expect_runs("show authmng statistic tmp", printed_by(authmng_show_webauth_tmp_file));
    expect_runs("show authmng abnormal", printed_by(authmng_show_webauth_statistic_abnormal));
    expect_runs("show authmanage user-escape", printed_by(authmng_show_check_info));
    expect_runs("debug authmanage show", printed_by(authmng_debug_webauth_check_info));
    expect_refused("show authmng mab statistic", "Unknown word \"mab\"");
    expect_refused("show authmng statistic fail", "Unknown word \"fail\"");
    expect_refused("show authmng abnormal auth", "Unknown word \"auth\"");
    expect_refused("show authmng", "Incomplete command: \"show authmng\"");
    // "?" in the configuration group; "redirect-time" is hidden.
    expect_runs("authmanage user-escape when ?",
                "  authentication-time   authentication time\n"
                "  timeout-ratio         timeout\n");
    expect_runs("authmanage user-escape time ?",
                "  <10-240>              min  (default value:30)\n");
    expect_runs("no authmanage user-escape time ?", "  <cr>\n");
    expect_runs("show authmng statistic ?", "  <cr>\n");
}

TEST_F(ShowCommandsTest, Dot1xProcessOffersNoWebauthOrEscapeCommands) {
    start_client(AUTHMNG_CLIENT_DOT1X);
    expect_refused("show authmng statistic tmp", "Unknown word \"tmp\"");
    expect_refused("show authmanage user-escape", "Unknown word \"authmanage\"");
    expect_refused("debug authmanage event", "Unknown word \"authmanage\"");
    expect_refused("authmanage user-escape time 31", "Unknown word \"authmanage\"");
    EXPECT_EQ(g_authmng_statistic_enable, 1);
    g_authmng_statistic_enable = 0;
    EXPECT_EQ(saved_config(), "");  // no configuration group here
}

TEST_F(ShowCommandsTest, GroupsSharingOnePointAreAllReachable) {
    ASSERT_EQ(authmng_host_cli_bind(300, "dot1x"), 0);
    ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X, 300, 300), 0);
    EXPECT_EQ(exec("dot1x statistic fail"), 0);
    EXPECT_EQ(exec("dot1x event"), 0);
    EXPECT_EQ(g_authmng_lib_event_dbg, 1);
    expect_refused("dot1x statistic event", "Unknown word \"event\"");
}

TEST_F(ShowCommandsTest, QuestionMarkListsVisibleChoicesAndRunsNothing) {
    start_client(AUTHMNG_CLIENT_DOT1X);
    expect_runs("show authmng ?",
                "  mab                   mac auth bypass\n"
                "  statistic             authmanage statistic informations\n"
                "  abnormal              show authmng abnormal all informations\n");
    expect_runs("show authmng mab statistic ?",  // "telnet" is hidden
                "  fail                  show authmanage fail statistic informations\n"
                "  auth-detail           show auth fail detail reason\n"
                "  reauth-detail         show reauth fail detail reason\n"
                "  offline-detail        show offline detail reason\n"
                "  <cr>\n");
    expect_runs("debug authmng event ?", "  <cr>\n");
    EXPECT_EQ(g_authmng_lib_event_dbg, 0);
    expect_refused("show authmng statistics ?", "Unknown word \"statistics\"");
}

TEST_F(ShowCommandsTest, CompletionOffersTheVisibleKeywordsThatFit) {
    start_client(AUTHMNG_CLIENT_DOT1X);
    char buf[256];
    EXPECT_EQ(authmng_host_cli_complete("show authmng", "", buf, sizeof buf), 3);
    EXPECT_STREQ(buf, "mab\nstatistic\nabnormal\n");
    EXPECT_EQ(authmng_host_cli_complete("show authmng statistic", "re", buf, sizeof buf), 1);
    EXPECT_STREQ(buf, "reauth-detail\n");
    EXPECT_EQ(authmng_host_cli_complete("show", "auth", buf, sizeof buf), 1);
    EXPECT_STREQ(buf, "authmng\n");
    EXPECT_EQ(authmng_host_cli_complete("debug authmng write-tmp", "", buf, sizeof buf), 0)
        << "a number is not completed";
    EXPECT_EQ(authmng_host_cli_complete("show authmng", "", buf, 6), 1) << "cut, terminated";
    EXPECT_STREQ(buf, "mab\n");
    EXPECT_EQ(take_cli(), "");
}

}  // namespace
}  // namespace authmng_test
