// Output of the port caught in memory while a check runs: cli_printf text
// and syslog lines, through authmng_port_check_capture.
#ifndef AUTHMNG_PORT_CHECK_CAPTURE_H
#define AUTHMNG_PORT_CHECK_CAPTURE_H

#include <cstdio>
#include <cstdlib>

#include "authmng_platform.h"

namespace port_check {

class MemoryStream {
public:
    MemoryStream() : file_(open_memstream(&text_, &size_)) {}
    ~MemoryStream() {
        if (file_ != nullptr) fclose(file_);
        free(text_);
    }
    MemoryStream(const MemoryStream &) = delete;
    MemoryStream &operator=(const MemoryStream &) = delete;

    FILE *file() const { return file_; }
    // What was written so far; "" when the stream could not be opened.
    const char *text() {
        if (file_ == nullptr) return "";
        fflush(file_);
        return text_ != nullptr ? text_ : "";
    }

private:
    char *text_ = nullptr;
    size_t size_ = 0;
    FILE *file_;
};

// Both outputs of the port, for the life of the object.
class Capture {
public:
    Capture() { authmng_port_check_capture(cli_.file(), log_.file()); }
    ~Capture() { authmng_port_check_capture(nullptr, nullptr); }
    Capture(const Capture &) = delete;
    Capture &operator=(const Capture &) = delete;

    const char *cli() { return cli_.text(); }
    const char *log() { return log_.text(); }

private:
    MemoryStream cli_;
    MemoryStream log_;
};

}  // namespace port_check

#endif
