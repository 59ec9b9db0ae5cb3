// Output of the displays. A display renders its text into memory while it
// holds g_authmng_mtx and prints it once the lock is released: a
// command-line session that stops reading (a pager waiting for a key,
// XOFF, a hung terminal) then holds only its own thread, never the event
// threads of the daemon that wait for the lock.
//
//     DeferredDisplay display;  // declared first: prints after the unlock
//     LibraryLock lock;
//     display_printf("...", ...);
//
// display_printf appends to the innermost DeferredDisplay of the calling
// thread; with none it prints at once. The text printed is the same bytes
// either way, in pieces of whole lines.
#ifndef AUTHMNG_CORE_DISPLAY_OUTPUT_H
#define AUTHMNG_CORE_DISPLAY_OUTPUT_H

#include <cstdarg>
#include <cstddef>

namespace authmng {

class DeferredDisplay {
public:
    DeferredDisplay();
    ~DeferredDisplay();
    DeferredDisplay(const DeferredDisplay &) = delete;
    DeferredDisplay &operator=(const DeferredDisplay &) = delete;

    // Appends text of length bytes, or formatted text. Without memory for
    // it, prints what is held and the text at once (the order stays) and
    // keeps printing so.
    void append(const char *text, std::size_t length);
    void vprintf(const char *fmt, va_list args) __attribute__((format(printf, 2, 0)));

private:
    // Room for more bytes and a terminator; false once printing at once.
    bool reserve(std::size_t more);
    void print_held();

    DeferredDisplay *outer_;
    char *text_ = nullptr;
    std::size_t length_ = 0;
    std::size_t capacity_ = 0;
    bool direct_ = false;
};

void display_printf(const char *fmt, ...) __attribute__((format(printf, 1, 2)));

}  // namespace authmng

#endif
