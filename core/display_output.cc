#include "core/display_output.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "authmng_platform.h"
#include "core/memory.h"

namespace authmng {
namespace {

// The innermost deferred display of this thread.
thread_local DeferredDisplay *t_display = nullptr;

// First size of a display's text; most displays fit.
constexpr std::size_t kFirstCapacity = 4096;

// Prints text line by line.
void print_lines(const char *text, std::size_t length) {
    while (length > 0) {
        const void *newline = memchr(text, '\n', length);
        std::size_t line =
            newline != nullptr
                ? static_cast<std::size_t>(static_cast<const char *>(newline) - text) + 1
                : length;
        cli_printf("%.*s", static_cast<int>(line), text);
        text += line;
        length -= line;
    }
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

void DeferredDisplay::append(const char *text, std::size_t length) {
    if (!direct_ && capacity_ - length_ < length) {
        std::size_t capacity = capacity_ == 0 ? kFirstCapacity : capacity_;
        while (capacity - length_ < length) capacity *= 2;
        char *grown = static_cast<char *>(zalloc(capacity));
        if (grown != nullptr) {
            if (length_ > 0) memcpy(grown, text_, length_);
            release(text_);
            text_ = grown;
            capacity_ = capacity;
        } else {
            print_held();
            direct_ = true;
        }
    }
    if (direct_) {
        print_lines(text, length);
        return;
    }
    memcpy(text_ + length_, text, length);
    length_ += length;
}

void display_printf(const char *fmt, ...) {
    char line[2048];
    va_list args;
    va_start(args, fmt);
    va_list again;
    va_copy(again, args);
    int length = vsnprintf(line, sizeof line, fmt, args);
    va_end(args);
    if (length >= 0) {
        char *text = line;
        Owned<char> longer;
        if (static_cast<std::size_t>(length) >= sizeof line) {
            longer = alloc_text(static_cast<std::size_t>(length) + 1);
            if (longer) vsnprintf(longer.get(), static_cast<std::size_t>(length) + 1, fmt, again);
            text = longer.get();
        }
        if (text != nullptr) {
            if (t_display != nullptr) {
                t_display->append(text, static_cast<std::size_t>(length));
            } else {
                print_lines(text, static_cast<std::size_t>(length));
            }
        }
    }
    va_end(again);
}

}  // namespace authmng
