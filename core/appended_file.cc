#include "core/appended_file.h"

#include <fcntl.h>
#include <unistd.h>

namespace authmng {
namespace {

// Opens path for appending, creating it (mode 0666 before the umask) when
// missing. Opened without waiting: a FIFO where the file belongs, with
// nobody reading it, would otherwise hold the writer (and the library mutex
// that the abnormal writers keep during their write) for good; such a path
// cannot be opened instead, like any other unusable path.
FILE *open_for_append(const char *path) {
    if (path == nullptr || path[0] == '\0') return nullptr;
    int fd = open(path, O_WRONLY | O_CREAT | O_APPEND | O_NONBLOCK | O_CLOEXEC, 0666);
    if (fd < 0) return nullptr;
    FILE *file = fdopen(fd, "a");
    if (file == nullptr) close(fd);
    return file;
}

}  // namespace

AppendedFile::AppendedFile(const char *path, long limit, const char *header)
    : file_(open_for_append(path)) {
    if (file_ == nullptr) return;
    long size = (fseek(file_, 0, SEEK_END) == 0) ? ftell(file_) : 0;
    bool past_limit = size > limit;
    if (past_limit && ftruncate(fileno(file_), 0) != 0) {
        // The old rows stay; the header still marks where this write starts.
    }
    if ((past_limit || size == 0) && header != nullptr) write(header);
}

AppendedFile::~AppendedFile() {
    if (file_ != nullptr) fclose(file_);
}

void AppendedFile::write(const char *text) {
    if (file_ != nullptr && text != nullptr) fputs(text, file_);
}

}  // namespace authmng
