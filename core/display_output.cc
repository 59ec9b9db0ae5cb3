#include "core/display_output.h"

#include <cstdio>
#include <cstring>

#include "authmng_platform.h"
#include "core/memory.h"

namespace authmng {
namespace {

// The innermost deferred display of this thread.
thread_local DeferredDisplay *t_display = nullptr;

// First size of a display's text; most displays fit.
constexpr std::size_t kFirstCapacity = 8192;

// Largest piece handed to one cli_printf: whole lines up to this many
// bytes (a longer line goes alone), within what a device's command-line
// output takes in one call.
constexpr std::size_t kPrintPiece = 1024;

// Prints text in pieces of whole lines.
void print_lines(const char *text, std::size_t length) {
    while (length > 0) {
        std::size_t piece = length;
        if (piece > kPrintPiece) {
            const void *end = memrchr(text, '\n', kPrintPiece);
            if (end == nullptr) end = memchr(text + kPrintPiece, '\n', length - kPrintPiece);
            if (end != nullptr)
                piece = static_cast<std::size_t>(static_cast<const char *>(end) - text) + 1;
        }
        cli_printf("%.*s", static_cast<int>(piece), text);
        text += piece;
        length -= piece;
    }
}

// Formats and prints at once.
__attribute__((format(printf, 1, 0))) void print_formatted(const char *fmt, va_list args) {
    char line[2048];
    va_list again;
    va_copy(again, args);
    int length = vsnprintf(line, sizeof line, fmt, args);
    if (length >= 0 && static_cast<std::size_t>(length) < sizeof line) {
        print_lines(line, static_cast<std::size_t>(length));
    } else if (length >= 0) {
        Owned<char> longer = alloc_text(static_cast<std::size_t>(length) + 1);
        if (longer) {
            vsnprintf(longer.get(), static_cast<std::size_t>(length) + 1, fmt, again);
            print_lines(longer.get(), static_cast<std::size_t>(length));
        }
    }
    va_end(again);
}

}  // namespace

DeferredDisplay::DeferredDisplay() : outer_(t_display) {
    t_display = this;
}

DeferredDisplay::~DeferredDisplay() {
    t_display = outer_;
    if (outer_ != nullptr && !direct_) {
        outer_->append(text_, length_);
    } else {
        print_held();
    }
    release(text_);
}

void DeferredDisplay::print_held() {
    print_lines(text_, length_);
    length_ = 0;
}

bool DeferredDisplay::reserve(std::size_t more) {
    if (direct_) return false;
    if (capacity_ - length_ > more) return true;
    std::size_t capacity = capacity_ == 0 ? kFirstCapacity : capacity_;
    while (capacity - length_ <= more) capacity *= 2;
    char *grown = static_cast<char *>(zalloc(capacity));
    if (grown == nullptr) {
        // Without memory: what is held, then everything else, at once.
        print_held();
        direct_ = true;
        return false;
    }
    if (length_ > 0) memcpy(grown, text_, length_);
    release(text_);
    text_ = grown;
    capacity_ = capacity;
    return true;
}

void DeferredDisplay::append(const char *text, std::size_t length) {
    if (!reserve(length)) return print_lines(text, length);
    memcpy(text_ + length_, text, length);
    length_ += length;
}

void DeferredDisplay::vprintf(const char *fmt, va_list args) {
    va_list again;
    va_copy(again, args);
    std::size_t room = capacity_ - length_;
    char *end = text_ != nullptr ? text_ + length_ : nullptr;
    int length = direct_ ? -1 : vsnprintf(end, room, fmt, args);
    if (length >= 0 && static_cast<std::size_t>(length) < room) {
        length_ += static_cast<std::size_t>(length);
    } else if (length >= 0 && reserve(static_cast<std::size_t>(length))) {
        vsnprintf(text_ + length_, static_cast<std::size_t>(length) + 1, fmt, again);
        length_ += static_cast<std::size_t>(length);
    } else {
        print_formatted(fmt, again);
    }
    va_end(again);
}

void display_printf(const char *fmt, ...) {
    va_list args;
    va_start(args, fmt);
    if (t_display != nullptr) {
        t_display->vprintf(fmt, args);
    } else {
        print_formatted(fmt, args);
    }
    va_end(args);
}

}  // namespace authmng
