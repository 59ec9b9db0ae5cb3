// The show commands of the two daemons as an operator types them. Each
// line must run the display its command names, so what it prints is
// compared with what that display prints when called directly (the
// display texts are the displays' own tests). Also the "?" listings, which
// leave out the hidden (attribute 18) keywords.
#include <functional>

#include "cli/cli_fixture.h"
#include "core/lock.h"

namespace authmng_test {
namespace {

class ShowCommandsTest : public CliTest {
protected:
    // The line runs and prints what display prints.
    void expect_shows(const std::string &line, const std::function<void()> &display) {
        take_cli();
        display();
        std::string expected = take_cli();
        expect_prints(line, expected);
    }

    void expect_prints(const std::string &line, const std::string &expected) {
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
        expect_shows(std::string("show authmng ") + c.words, [&] { c.display(c.plain); });
        expect_shows(std::string("show authmng mab ") + c.words, [&] { c.display(c.mab); });
    }
}

TEST_F(ShowCommandsTest, WebauthLinesRunTheirDisplayAndConfigurationListings) {
    start_client(AUTHMNG_CLIENT_WBA);
    g_authmng_webauth.auth_total = 4;
    expect_shows("show authmng statistic", authmng_show_webauth_statistic);
    expect_shows("show authmng statistic telnet", authmng_show_webauth_statistic_telnet);
    expect_shows("show authmng statistic tmp", authmng_show_webauth_tmp_file);
    expect_shows("show authmng abnormal", authmng_show_webauth_statistic_abnormal);
    expect_shows("show authmanage user-escape", authmng_show_check_info);
    expect_shows("debug authmanage show", authmng_debug_webauth_check_info);
    // "?" in the configuration group; "redirect-time" is hidden.
    expect_prints("authmanage user-escape when ?",
                  "  authentication-time   authentication time\n"
                  "  timeout-ratio         timeout\n");
    expect_prints("authmanage user-escape time ?",
                  "  <10-240>              min  (default value:30)\n");
    expect_prints("no authmanage user-escape time ?", "  <cr>\n");
}

TEST_F(ShowCommandsTest, GroupsSharingOnePointAreAllReachable) {
    ASSERT_EQ(authmng_host_cli_bind(300, "dot1x"), 0);
    ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X, 300, 300), 0);
    EXPECT_EQ(exec("dot1x statistic fail"), 0);
    EXPECT_EQ(exec("dot1x event"), 0);
    EXPECT_EQ(g_authmng_lib_event_dbg, 1);
    expect_refused("dot1x statistic event", "Unknown word \"event\"");
}

TEST_F(ShowCommandsTest, QuestionMarkAndCompletionOfferTheVisibleChoicesAndRunNothing) {
    start_client(AUTHMNG_CLIENT_DOT1X);
    expect_prints("show authmng ?",
                  "  mab                   mac auth bypass\n"
                  "  statistic             authmanage statistic informations\n"
                  "  abnormal              show authmng abnormal all informations\n");
    expect_prints("show authmng mab statistic ?",  // "telnet" is hidden
                  "  fail                  show authmanage fail statistic informations\n"
                  "  auth-detail           show auth fail detail reason\n"
                  "  reauth-detail         show reauth fail detail reason\n"
                  "  offline-detail        show offline detail reason\n"
                  "  <cr>\n");
    expect_prints("debug authmng event ?", "  <cr>\n");
    EXPECT_EQ(g_authmng_lib_event_dbg, 0);
    expect_refused("show authmng statistics ?", "Unknown word \"statistics\"");
    char buf[256];
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
