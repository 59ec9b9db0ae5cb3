#include "core/appended_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "core/log.h"

namespace authmng {
namespace {

// Whether an opened file may be written: a regular file of the effective
// user with no other name. Anything else at the path (a link's target
// reached through a second name, another account's file, a device or a
// FIFO) was put there by someone else and is left as it is.
bool own_plain_file(int fd) {
    struct stat st;
    return fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && st.st_nlink == 1 && st.st_uid == geteuid();
}

// Opens path for appending, creating it (mode 0666 before the umask) when
// missing. A symbolic link at the path is not followed: in a shared
// temporary area it would let another account point the writes (and the
// truncation past the limit) at any file. Opened without waiting: a FIFO
// where the file belongs, with nobody reading it, would otherwise hold the
// writer (and the library mutex that the abnormal writers keep during their
// write) for good; such a path cannot be opened instead, like any other
// unusable path.
FILE *open_for_append(const char *path) {
    if (path == nullptr || path[0] == '\0') return nullptr;
    int fd = open(path, O_WRONLY | O_CREAT | O_APPEND | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW, 0666);
    if (fd < 0) {
        // A missing directory is the ordinary way of having no file; a link,
        // a FIFO or a file the user may not write is someone else's doing.
        if (errno != ENOENT) AUTHMNG_ERROR_DBG("%s cannot be opened, not written.\n", path);
        return nullptr;
    }
    if (!own_plain_file(fd)) {
        AUTHMNG_ERROR_DBG("%s is not a plain file of this user, not written.\n", path);
        close(fd);
        return nullptr;
    }
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
