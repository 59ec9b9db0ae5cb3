// A progress bar on stderr for long replays, drawn only when stderr is a
// terminal and only when the shown percentage changes.
#ifndef AUTHMNG_SIM_PROGRESS_H
#define AUTHMNG_SIM_PROGRESS_H

#include <unistd.h>
#include <cstdio>

namespace authmng_sim {

class Progress {
public:
    Progress() : enabled_(isatty(STDERR_FILENO) == 1) {}
    ~Progress() { finish(); }

    void update(double fraction) {
        if (!enabled_) return;
        int percent = fraction <= 0 ? 0 : fraction >= 1 ? 100 : static_cast<int>(fraction * 100);
        if (percent == shown_) return;
        shown_ = percent;
        char bar[41];
        int filled = percent * 40 / 100;
        for (int i = 0; i < 40; ++i) bar[i] = i < filled ? '#' : '.';
        bar[40] = '\0';
        fprintf(stderr, "\r[%s] %3d%%", bar, percent);
        fflush(stderr);
        drawn_ = true;
    }

    void finish() {
        if (drawn_) fprintf(stderr, "\r%60s\r", "");
        drawn_ = false;
    }

private:
    bool enabled_;
    bool drawn_ = false;
    int shown_ = -1;
};

}  // namespace authmng_sim

#endif
