// Shared by the command-line tests: a started client whose own show and
// debug points are bound to "show authmng" and "debug authmng", and helpers
// to type lines and read the saved configuration.
#ifndef AUTHMNG_CLI_CLI_FIXTURE_H
#define AUTHMNG_CLI_CLI_FIXTURE_H

#include <cstdlib>
#include <string>

#include "support/fixture.h"

namespace authmng_test {

class CliTest : public AuthmngTest {
protected:
    void start_client(int32_t type) {
        ASSERT_EQ(authmng_host_cli_bind(200, "show authmng"), 0);
        ASSERT_EQ(authmng_host_cli_bind(100, "debug authmng"), 0);
        ASSERT_EQ(start(type, 100, 200), 0);
        take_cli();
    }

    int exec(const std::string &line) { return authmng_host_cli_exec(line.c_str()); }

    std::string saved_config() {
        char *buf = nullptr;
        size_t len = 0;
        FILE *out = open_memstream(&buf, &len);
        authmng_host_cli_saved_config(out);
        fclose(out);
        std::string text(buf, len);
        free(buf);
        return text;
    }

    // A refused line prints exactly one line, which names the reason.
    void expect_refused(const std::string &line, const std::string &reason) {
        take_cli();
        EXPECT_EQ(exec(line), -1) << line;
        std::string said = take_cli();
        EXPECT_EQ(count_lines(said), 1u) << line << ": " << said;
        EXPECT_NE(said.find(reason), std::string::npos) << line << ": " << said;
    }
};

}  // namespace authmng_test

#endif
