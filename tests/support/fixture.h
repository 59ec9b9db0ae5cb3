// The fixture of every test: fresh TMPDIR and flash directories, TZ=UTC, a
// pinned clock, and captured command-line and syslog output.
#ifndef AUTHMNG_TESTS_SUPPORT_FIXTURE_H
#define AUTHMNG_TESTS_SUPPORT_FIXTURE_H

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string>

#include "authmng.h"
#include "authmng_host.h"

namespace authmng_test {

// 2026-03-09 14:05:07 UTC, a Monday.
constexpr int64_t kMonday140507 = 1773065107;

class AuthmngTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Starts the library as the given client; the result of authmng_init.
    int start(int32_t client_type, int32_t debug_mode = 100, int32_t show_mode = 200);

    // Output captured since the last take (the buffer is emptied).
    std::string take_cli() { return cli_.take(); }
    std::string take_syslog() { return syslog_.take(); }

    // Full paths in the two areas of this test.
    std::string tmp_path(const std::string &relative) const { return tmp_dir_ + relative; }
    std::string flash_path(const std::string &relative) const { return flash_dir_ + relative; }

    // The abnormal file of a client.
    std::string abnormal_file(int32_t client) const;

    const std::string &tmp_dir() const { return tmp_dir_; }
    const std::string &flash_dir() const { return flash_dir_; }
    const std::string &root_dir() const { return root_; }

private:
    std::string root_, tmp_dir_, flash_dir_;
    // Output written into memory, taken in parts.
    struct Capture {
        char *buf = nullptr;
        size_t len = 0, taken = 0;
        FILE *file = nullptr;
        FILE *open() { return file = open_memstream(&buf, &len); }
        void close() { (file != nullptr ? fclose(file) : 0), free(buf); }
        std::string take();
    } cli_, syslog_;
};

// Whole file as text ("" when missing); exists() for presence.
std::string read_file(const std::string &path);
inline bool exists(const std::string &path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0;
}
void write_file(const std::string &path, const std::string &text);
// A file of exactly size bytes (lines of 'x' ending in newlines).
void write_file_of_size(const std::string &path, size_t size);
// Number of lines of a text; occurrences of part in it (overlapping ones
// count each).
inline size_t count_lines(const std::string &text) {
    return std::count(text.begin(), text.end(), '\n');
}
inline size_t occurrences(const std::string &text, const std::string &part) {
    size_t n = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
    return n;
}
// Whether text holds line as one whole line; expect_lines checks several.
inline bool has_line(const std::string &text, const std::string &line) {
    return ("\n" + text).find("\n" + line + "\n") != std::string::npos;
}
void expect_lines(const std::string &text, std::initializer_list<std::string> lines);
// A golden text of tests/golden.
std::string golden(const std::string &name);

// Every timer writer of a client: the interval statistic file (802.1X: and
// the daily one) and the abnormal file.
void write_all(int32_t client);

// A zeroed event record of a client type and kind.
authmng_auth_info_t event_record(int32_t client_type, uint32_t event, uint32_t result = 0);

}  // namespace authmng_test

#endif
