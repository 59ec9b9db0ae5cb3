#include "support/fixture.h"

#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace authmng_test {
namespace {

int remove_entry(const char *path, const struct stat *, int, struct FTW *) {
    return remove(path);
}

}  // namespace

void AuthmngTest::SetUp() {
    char pattern[] = "/tmp/authmng-test-XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    root_ = pattern;
    tmp_dir_ = root_ + "/tmp";
    flash_dir_ = root_ + "/flash";
    ASSERT_EQ(mkdir(tmp_dir_.c_str(), 0777), 0);
    ASSERT_EQ(mkdir(flash_dir_.c_str(), 0777), 0);
    setenv("TMPDIR", tmp_dir_.c_str(), 1);
    setenv("AUTHMNG_FLASH_HOME", flash_dir_.c_str(), 1);
    setenv("TZ", "UTC", 1);
    tzset();
    authmng_host_clock_fail(0);
    authmng_host_clock_set(kMonday140507);
    cli_ = open_memstream(&cli_buf_, &cli_len_);
    syslog_ = open_memstream(&syslog_buf_, &syslog_len_);
    authmng_host_cli_output(cli_);
    authmng_host_syslog_output(syslog_);
}

void AuthmngTest::TearDown() {
    authmng_host_cli_output(nullptr);
    authmng_host_syslog_output(nullptr);
    if (cli_ != nullptr) fclose(cli_);
    if (syslog_ != nullptr) fclose(syslog_);
    free(cli_buf_);
    free(syslog_buf_);
    if (!root_.empty()) {
        chmod(root_.c_str(), 0777);
        nftw(root_.c_str(), remove_entry, 16, FTW_DEPTH | FTW_PHYS);
    }
}

int AuthmngTest::start(int32_t client_type, int32_t debug_mode, int32_t show_mode) {
    authmng_reg_t reg = {client_type, debug_mode, show_mode};
    return authmng_init(&reg);
}

std::string AuthmngTest::take_cli() {
    fflush(cli_);
    std::string text(cli_buf_ + cli_taken_, cli_len_ - cli_taken_);
    cli_taken_ = cli_len_;
    return text;
}

std::string AuthmngTest::take_syslog() {
    fflush(syslog_);
    std::string text(syslog_buf_ + syslog_taken_, syslog_len_ - syslog_taken_);
    syslog_taken_ = syslog_len_;
    return text;
}

std::string read_file(const std::string &path) {
    FILE *f = fopen(path.c_str(), "rb");
    if (f == nullptr) return "";
    std::string text;
    char chunk[4096];
    size_t n;
    while ((n = fread(chunk, 1, sizeof chunk, f)) > 0) text.append(chunk, n);
    fclose(f);
    return text;
}

bool exists(const std::string &path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0;
}

void write_file(const std::string &path, const std::string &text) {
    FILE *f = fopen(path.c_str(), "wb");
    ASSERT_NE(f, nullptr) << path;
    fwrite(text.data(), 1, text.size(), f);
    fclose(f);
}

void write_file_of_size(const std::string &path, size_t size) {
    std::string text;
    text.reserve(size);
    while (text.size() < size) {
        size_t line = std::min<size_t>(80, size - text.size());
        text.append(line - 1, 'x');
        text.push_back('\n');
    }
    write_file(path, text);
}

size_t count_lines(const std::string &text) {
    size_t n = 0;
    for (char c : text) n += c == '\n';
    return n;
}

size_t occurrences(const std::string &text, const std::string &part) {
    size_t n = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
    return n;
}

bool has_line(const std::string &text, const std::string &line) {
    return ("\n" + text).find("\n" + line + "\n") != std::string::npos;
}

void expect_lines(const std::string &text, std::initializer_list<std::string> lines) {
    for (const std::string &line : lines) EXPECT_TRUE(has_line(text, line)) << line << "\n" << text;
}

std::string golden(const std::string &name) {
    return read_file(std::string(AUTHMNG_GOLDEN_DIR) + "/" + name);
}

authmng_auth_info_t event_record(int32_t client_type, uint32_t event, uint32_t result) {
    authmng_auth_info_t info;
    memset(&info, 0, sizeof info);
    info.client_type = client_type;
    info.event = event;
    info.result = result;
    return info;
}

}  // namespace authmng_test
