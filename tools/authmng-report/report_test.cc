// The report's modules on small files written in the library's formats:
// reading rows (kinds, dates and years, restarted files, cut rows, units,
// names with commas), the model (episodes, restarts), escaping, and the
// tidy tables carrying every number of the files.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utime.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

#include "chart.h"
#include "html.h"
#include "model.h"
#include "rows.h"
#include "storage.h"
#include "tidy.h"

namespace authmng_report {
namespace {

// 2027-01-01 12:00:00 UTC: files copied on New Year's Day.
constexpr int64_t kNewYearsDay = 1798804800;

const char kDot1xInterval[] =
    "date,type,current_online_user,auth_count,auth_succ_count,authfail_reason_most,reauth_count,"
    "reauth_fail_count,offline_count,offline_reason_most,auth[0-1),auth[1-3),auth[3-)\n"
    "12.31 23:00:00,dot1x,40, 100, 95, aaa reject,3, 3, 2, user logoff, 90, 4, 1\n"
    "12.31 23:00:00,mab,12, 20, 20, ,0, 0, 0, , 20, 0, 0\n"
    "12.31 23:30:00,dot1x,41, 120, 60, aaa timeout,5, 4, 7, server kickout user, 30, 20, 10\n"
    "date,type,current_online_user,auth_count,auth_succ_count,authfail_reason_most,reauth_count,"
    "reauth_fail_count,offline_count,offline_reason_most,auth[0-1),auth[1-3),auth[3-)\n"
    "01.01 00:00:00,dot1x,43, 80, 50, aaa timeout,6, 6, 1, user logoff, 45, 4, 1\n"
    "01.01 00:30:00,dot1x,44, 90, 88, aaa reject,0, 0, 0, , 88, 0, 0\n"
    "01.01 01:00:00,dot1x,44, 7";  // cut while being written

const char kDot1xDaily[] =
    "date,type,auth total number,auth success,reauth number,reauth success,offline,auth[0-1),"
    "auth[1-3),auth[3-),auth average\n"
    "12.31 01:00:00,dot1x,500,450,10,9,300,400,40,10,812\n"
    "01.01 01:00:00,dot1x,120,110,2,2,50,100,8,2,640\n";

const char kDot1xAbnormal[] =
    "date,username,mac,ip,auth_time,aaa timeout,requestid_timeout,request_timeout,rsna_notify,"
    "start_notify,Type,Reason,Rssi,StaT,SelfT,AaaT,RdsT,RdsST,Acode,Rcode,DisMatchId,LogOff\n"
    "12.31 23:10:02,a,b<script>window.pwned=1</script>,001a.2b3c.4d5e,192.0.2.10,1500,1,0,0,0,0,"
    "D1X_AUTH,aaa timeout,-61,100,20,1350,1300,1200,-3,0,0,0\n";

const char kWebauthInterval[] =
    "date,online_user,auth_count,auth_succ_count,rd_user,http_req_count,offline_count,"
    "average_online,abnormal_offline,rd[0-0.5),rd[0.5-1),rd[1-),aggreage_rd_time,auth[0-1),"
    "auth[1-3),auth[3-),aggregate_auth_time,auth_except_svr[0-1),auth_except_svr[1-3),"
    "auth_except_svr[3-),aggregate_auth_except_svr_time,move_count,move_fail_count\n"
    "12.31 23:30:0, 19, 300, 200, 61, 61, 7, 100min, 1, 46, 14, 0, 21220, 26, 0, 0, 12171, 26, 0, "
    "0, 6938, 15, 1\n";

const char kWebauthSub[] =
    "date,aaa_reject,aaa_timeout,auth_dev_timeout,set_scc_fail,account_reject,"
    "account_status_timeout,find_user_fail,other_reason,aggregate_account,acc[0-1),acc[1-),"
    "aggregate_aaa,aaa[0-1),aaa[1-),aggregate_rds,rds[0-1),rds[1-),aggregate_rdsvr,rdsvr[0-1),"
    "rdsvr[1-),aggregate_aaa_acc,aaa_acc[0-1),aaa_acc[1-),aggregate_rds_acc,rds_acc[0-1),"
    "rds_acc[1-),aggregate_rdsvr_acc,rdsvr_acc[0-1),rdsvr_acc[1-),aggregate_scc,scc[0-1),"
    "scc[1-),aggregate_portal,portal[0-1),portal[1-)\n"
    "12.31 23:30:1, 30, 60, 0, 0, 0, 0, 10, 0, 2687ms, 26, 0, 290ms, 26, 0, 438ms, 26, 0, "
    "3147ms, 26, 0, 166ms, 26, 0, 285ms, 26, 0, 2086s, 26, 0 ,660ms, 26, 0, 4344ms, 26, 0\n";

const char kEscapeLog[] =
    "Thu Dec 31 23:40:59 2026\nauth: 44248 780250\n"
    "Thu Dec 31 23:41:59 2026\nauthtimeout: 5 18\n"
    "Thu Dec 31 23:50:59 2026\nredirect: 30000 350000\n"
    "Fri Jan  1 01:00:59 2027\nauth: 442";

const char kCpp[] = "time,cpp\n12.31 23:30:0,21\n1.1 0:0:0,36\n";

struct Source {
    FileKind kind;
    const char *name;
    const char *text;
};
constexpr Source kSources[] = {
    {FileKind::kDot1xInterval, "dot1x_statistic.csv", kDot1xInterval},
    {FileKind::kDot1xDaily, "dot1x_statistic.csv", kDot1xDaily},
    {FileKind::kDot1xAbnormal, "dot1x_abnormal.csv", kDot1xAbnormal},
    {FileKind::kWebauthInterval, "wba_statistic.csv", kWebauthInterval},
    {FileKind::kWebauthSub, "wba_substatistic.csv", kWebauthSub},
    {FileKind::kEscapeLog, "log.txt", kEscapeLog},
    {FileKind::kCpp, "cpp.csv", kCpp},
};

std::vector<ParsedFile> parse_all(const YearRule &years) {
    std::vector<ParsedFile> files;
    for (const Source &s : kSources) files.push_back(parse_file(s.kind, s.name, s.text, years));
    return files;
}

TEST(ReportRows, KindsComeFromHeadersAndDatesFromEitherForm) {
    for (const Source &s : kSources) {
        std::string text = s.text;
        EXPECT_EQ(detect_kind(s.name, text.substr(0, text.find('\n'))), s.kind) << s.name;
    }
    EXPECT_EQ(detect_kind("dot1x_statistic.csv", "03.09 10:00:00,dot1x,1"), FileKind::kUnknown);

    MonthDayTime t;
    ASSERT_TRUE(parse_month_day("03.07 01:00:05", &t));
    EXPECT_EQ(t.month * 100 + t.day, 307);
    ASSERT_TRUE(parse_month_day("3.7 1:0:5", &t));
    EXPECT_EQ(t.hour * 10000 + t.minute * 100 + t.second, 10005);
    for (const char *bad : {"13.01 00:00:00", "3.7 1:0", "3.7 1:0:5x", "", "3.32 0:0:0"}) {
        EXPECT_FALSE(parse_month_day(bad, &t)) << bad;
    }
}

TEST(ReportRows, YearsCrossNewYearFromTheFileTimeOrTheGivenYear) {
    for (YearRule years : {YearRule{kNewYearsDay, 0}, YearRule{0, 2026}}) {
        ParsedFile f = parse_file(FileKind::kDot1xInterval, "x", kDot1xInterval, years);
        ASSERT_EQ(f.rows.size(), 5u);
        EXPECT_EQ(iso_time(f.rows.front().time), "2026-12-31T23:00:00");
        EXPECT_EQ(iso_time(f.rows.back().time), "2027-01-01T00:30:00");
    }
}

TEST(ReportRows, RestartedFilesCutRowsUnitsAndNamesWithCommas) {
    ParsedFile interval =
        parse_file(FileKind::kDot1xInterval, "x", kDot1xInterval, YearRule{kNewYearsDay, 0});
    EXPECT_EQ(interval.restarts, 1);
    EXPECT_EQ(interval.cut_rows, 1);
    EXPECT_EQ(interval.rows[2].segment, 0);
    EXPECT_EQ(interval.rows[3].segment, 1);
    EXPECT_EQ(interval.rows[1].fields[4], "") << "an empty reason stays empty";

    ParsedFile sub = parse_file(FileKind::kWebauthSub, "x", kWebauthSub, YearRule{kNewYearsDay, 0});
    ASSERT_EQ(sub.rows.size(), 1u);
    EXPECT_EQ(sub.rows[0].fields[8], "2687");
    EXPECT_EQ(sub.rows[0].fields[26], "2086") << "the 's' of the 28th field";
    EXPECT_EQ(sub.rows[0].fields[29], "660") << "blank before the comma";

    ParsedFile abnormal =
        parse_file(FileKind::kDot1xAbnormal, "x", kDot1xAbnormal, YearRule{kNewYearsDay, 0});
    ASSERT_EQ(abnormal.rows.size(), 1u);
    EXPECT_EQ(abnormal.rows[0].fields[0], "a,b<script>window.pwned=1</script>");
    EXPECT_EQ(abnormal.rows[0].fields[1], "001a.2b3c.4d5e");

    ParsedFile log = parse_file(FileKind::kEscapeLog, "x", kEscapeLog, YearRule{});
    ASSERT_EQ(log.rows.size(), 3u);
    EXPECT_EQ(log.cut_rows, 1);
    EXPECT_EQ(iso_time(log.rows[2].time), "2026-12-31T23:50:59");
    EXPECT_EQ(log.rows[1].fields, (std::vector<std::string>{"authtimeout", "5", "18"}));
}

// A copied tree: files found by name at any depth, years from their
// modification times, other files and unknown headers noted.
TEST(ReportStorage, FilesAreFoundByNameAndYearedByTheirTimes) {
    char root[] = "/tmp/authmng-report-XXXXXX";
    ASSERT_NE(mkdtemp(root), nullptr);
    std::string dir = std::string(root) + "/flash";
    ASSERT_EQ(mkdir(dir.c_str(), 0700), 0);
    auto write = [](const std::string &path, const char *text) {
        FILE *f = fopen(path.c_str(), "w");
        fputs(text, f);
        fclose(f);
        struct utimbuf times = {kNewYearsDay, kNewYearsDay};
        utime(path.c_str(), &times);
    };
    write(dir + "/dot1x_statistic.csv", kDot1xDaily);
    write(dir + "/cpp.csv", "no header here\n");
    write(std::string(root) + "/notes.txt", "not read\n");
    TreeFiles tree = read_tree(std::string(root) + "/", 0);
    system((std::string("rm -rf ") + root).c_str());

    EXPECT_EQ(tree.label, std::string(root).substr(5));
    ASSERT_EQ(tree.files.size(), 1u);
    EXPECT_EQ(tree.files[0].path, "flash/dot1x_statistic.csv");
    EXPECT_EQ(tree.files[0].kind, FileKind::kDot1xDaily);
    EXPECT_EQ(iso_time(tree.files[0].rows[0].time), "2026-12-31T01:00:00");
    ASSERT_EQ(tree.notes.size(), 1u);
    EXPECT_EQ(tree.notes[0], "flash/cpp.csv: not a file of the library (unknown header), left out");
}

TEST(ReportModel, EpisodesRestartsAndCauses) {
    Settings settings;
    settings.min_auths = 50;
    Device device = build_device("sw1", parse_all(YearRule{kNewYearsDay, 0}), settings);
    std::vector<Episode> episodes = find_episodes({device}, settings);
    // 802.1X: 23:30 (50%) and 00:00 (62.5%) merge; web-auth 23:30 (66.7%);
    // the escape log: one escape run and one restart.
    ASSERT_EQ(episodes.size(), 4u);
    const Episode &dot1x = episodes[0];
    EXPECT_EQ(dot1x.client, "dot1x");
    EXPECT_EQ(iso_time(dot1x.start), "2026-12-31T23:00:00");
    EXPECT_EQ(iso_time(dot1x.end), "2027-01-01T00:00:00");
    EXPECT_EQ(dot1x.auths, 200);
    EXPECT_EQ(dot1x.failures, 90);
    EXPECT_EQ(dot1x.cause, "aaa timeout");
    EXPECT_EQ(episodes[1].client, "webauth");
    EXPECT_EQ(episodes[1].cause, "AAA timeout") << "the result text of code 2";
    EXPECT_EQ(episodes[2].what, "users escaped authentication");
    EXPECT_EQ(episodes[2].log_entries, 2);
    EXPECT_EQ(iso_time(episodes[2].end), "2027-01-01T00:11:59") << "30 minutes after the last";
    EXPECT_EQ(episodes[3].what, "redirect side restart");

    std::string notes;
    for (const std::string &n : device.notes) notes += n + "\n";
    EXPECT_NE(notes.find("restarted 1 time(s)"), std::string::npos) << notes;
    EXPECT_NE(notes.find("totals went back before 2027-01-01T01:00:00"), std::string::npos);
    ASSERT_EQ(device.abnormal.size(), 1u);
    EXPECT_EQ(device.abnormal[0].steps[2], 50) << "AAA without the RADIUS time";
    EXPECT_EQ(device.abnormal[0].steps[4], 1200);
}

TEST(ReportHtml, TextFromTheFilesIsEscaped) {
    EXPECT_EQ(html_escape("<a href=\"x\">'&'</a>"),
              "&lt;a href=&quot;x&quot;&gt;&#39;&amp;&#39;&lt;/a&gt;");
    Model model;
    model.devices.push_back(
        build_device("<b>sw</b>", parse_all(YearRule{kNewYearsDay, 0}), model.settings));
    model.episodes = find_episodes(model.devices, model.settings);
    std::string page = render_report(model);
    EXPECT_EQ(page.find("<script>window.pwned"), std::string::npos);
    EXPECT_NE(page.find("a,b&lt;script&gt;window.pwned=1&lt;/script&gt;"), std::string::npos);
    EXPECT_EQ(page.find("<b>sw</b>"), std::string::npos);
    EXPECT_EQ(page.find("://"), std::string::npos) << "nothing fetched";
}

// Every number of every data row is in the tidy tables, as often as in
// the files.
TEST(ReportTidy, EveryNumberOfTheFilesIsInTheTables) {
    std::vector<TreeFiles> trees(1);
    trees[0].label = "sw1";
    trees[0].files = parse_all(YearRule{kNewYearsDay, 0});
    std::map<std::string, int> numbers;
    for (const ParsedFile &file : trees[0].files) {
        for (const Row &row : file.rows) {
            for (const std::string &field : row.fields) {
                if (is_number(field)) ++numbers[field];
            }
        }
    }
    std::map<std::string, int> tidy;
    for (const auto &table : tidy_tables(trees)) {
        for (size_t start = 0; start < table.second.size();) {
            size_t end = table.second.find_first_of(",\n", start);
            if (end == std::string::npos) end = table.second.size();
            std::string field = table.second.substr(start, end - start);
            if (is_number(field)) ++tidy[field];
            start = end + 1;
        }
    }
    for (const auto &n : numbers) EXPECT_GE(tidy[n.first], n.second) << n.first;
    // Spot checks of the value columns the numbers land in.
    std::string statistics = tidy_tables(trees)[0].second;
    EXPECT_NE(statistics.find("sw1,dot1x_statistic.csv,dot1x,2026-12-31T23:30:00,auth_count,120,"
                              "interval\n"),
              std::string::npos);
    EXPECT_NE(statistics.find(",webauth,2026-12-31T23:30:00,average_online,100,current\n"),
              std::string::npos);
    EXPECT_NE(statistics.find(",dot1x,2026-12-31T01:00:00,auth total number,500,total\n"),
              std::string::npos);
    EXPECT_EQ(csv_field("a,b\"c"), "\"a,b\"\"c\"");
}

}  // namespace
}  // namespace authmng_report
