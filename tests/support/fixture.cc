#include "support/fixture.h"

#include <ftw.h>

#include <cstdlib>
#include <ctime>

namespace authmng_test {

void AuthmngTest::SetUp() {
    char pattern[] = "/tmp/authmng-test-XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    root_ = pattern;
    tmp_dir_ = root_ + "/tmp";
    flash_dir_ = root_ + "/flash";
    ASSERT_EQ(mkdir(tmp_dir_.c_str(), 0777) | mkdir(flash_dir_.c_str(), 0777), 0);
    setenv("TMPDIR", tmp_dir_.c_str(), 1);
    setenv("AUTHMNG_FLASH_HOME", flash_dir_.c_str(), 1);
    setenv("TZ", "UTC", 1);
    tzset();
    authmng_host_clock_fail(0);
    authmng_host_clock_set(kMonday140507);
    authmng_host_cli_output(cli_.open());
    authmng_host_syslog_output(syslog_.open());
}

void AuthmngTest::TearDown() {
    authmng_host_cli_output(nullptr);
    authmng_host_syslog_output(nullptr);
    cli_.close();
    syslog_.close();
    if (!root_.empty()) {
        chmod(root_.c_str(), 0777);
        nftw(
            root_.c_str(),
            [](const char *path, const struct stat *, int, struct FTW *) { return remove(path); },
            16, FTW_DEPTH | FTW_PHYS);
    }
}

int AuthmngTest::start(int32_t client_type, int32_t debug_mode, int32_t show_mode) {
    authmng_reg_t reg = {client_type, debug_mode, show_mode};
    return authmng_init(&reg);
}

std::string AuthmngTest::abnormal_file(int32_t client) const {
    return flash_path(client == AUTHMNG_CLIENT_WBA
                          ? "/security/authmanage/webauth/wba_abnormal.csv"
                          : "/security/authmanage/dot1x/dot1x_abnormal.csv");
}

std::string AuthmngTest::Capture::take() {
    fflush(file);
    std::string text(buf + taken, len - taken);
    taken = len;
    return text;
}

std::string read_file(const std::string &path) {
    std::string text;
    FILE *f = fopen(path.c_str(), "rb");
    for (int c; f != nullptr && (c = getc(f)) != EOF;) text.push_back(static_cast<char>(c));
    if (f != nullptr) fclose(f);
    return text;
}

void write_file(const std::string &path, const std::string &text) {
    FILE *f = fopen(path.c_str(), "wb");
    ASSERT_NE(f, nullptr) << path;
    fwrite(text.data(), 1, text.size(), f);
    fclose(f);
}

void write_file_of_size(const std::string &path, size_t size) {
    std::string text;
    while (text.size() < size)
        text += std::string(std::min<size_t>(80, size - text.size()) - 1, 'x') + "\n";
    write_file(path, text);
}

void expect_lines(const std::string &text, std::initializer_list<std::string> lines) {
    for (const std::string &line : lines) EXPECT_TRUE(has_line(text, line)) << line << "\n" << text;
}

std::string golden(const std::string &name) {
    return read_file(std::string(AUTHMNG_GOLDEN_DIR) + "/" + name);
}

void write_all(int32_t client) {
    if (client == AUTHMNG_CLIENT_WBA) {
        authmng_write_webauth_statistic_to_tmp();
        authmng_write_webauth_abnormal_record_to_file();
        return;
    }
    authmng_write_dot1x_statistic_to_tmpfile();
    authmng_write_dot1x_statistic_to_flashfile();
    authmng_write_dot1x_abnormal_record_to_file();
}

authmng_auth_info_t event_record(int32_t client_type, uint32_t event, uint32_t result) {
    authmng_auth_info_t info{};
    info.client_type = client_type;
    info.event = event;
    info.result = result;
    return info;
}

}  // namespace authmng_test
