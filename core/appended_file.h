// The one helper for every appended CSV and log file: open for appending
// (never through a symbolic link, and only a regular file of the effective
// user with a single name; anything else is left untouched and the object
// tests false), take the size, empty the file and write the header when it has grown past
// its limit, write the header on an empty file. Closed when it goes out of
// scope. Write errors of the stream are not checked (a full disk loses the
// rows of that write only).
#ifndef AUTHMNG_CORE_APPENDED_FILE_H
#define AUTHMNG_CORE_APPENDED_FILE_H

#include <cstdio>

namespace authmng {

class AppendedFile {
public:
    // header may be null (a file without header). limit in bytes: a file
    // larger than limit at opening is emptied first.
    AppendedFile(const char *path, long limit, const char *header);
    ~AppendedFile();
    AppendedFile(const AppendedFile &) = delete;
    AppendedFile &operator=(const AppendedFile &) = delete;

    explicit operator bool() const { return file_ != nullptr; }
    void write(const char *text);

private:
    FILE *file_;
};

}  // namespace authmng

#endif
