#include "core/appended_file.h"

#include <unistd.h>

namespace authmng {

AppendedFile::AppendedFile(const char *path, long limit, const char *header)
    : file_(path != nullptr && path[0] != '\0' ? fopen(path, "a") : nullptr) {
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
