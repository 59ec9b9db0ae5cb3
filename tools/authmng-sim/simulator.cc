#include "simulator.h"

#include <dirent.h>
#include <sys/stat.h>

#include <cerrno>
#include <cinttypes>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <vector>

#include "authmng_host.h"

namespace authmng_sim {
namespace {

constexpr int64_t kTickSeconds = 60;

// The cpp client's counter as the simulated daemon reports it.
uint32_t g_cpp_value = 0;
uint32_t sample_cpp(int) {
    return __atomic_load_n(&g_cpp_value, __ATOMIC_RELAXED);
}

// Creates path and any missing parents.
bool make_dir(const std::string &path, std::string *error) {
    size_t slash = path.find_last_of('/');
    if (slash != std::string::npos && slash > 0) {
        struct stat st;
        std::string parent = path.substr(0, slash);
        if (stat(parent.c_str(), &st) != 0 && !make_dir(parent, error)) return false;
    }
    if (mkdir(path.c_str(), 0777) == 0 || errno == EEXIST) return true;
    *error = "cannot create " + path + ": " + strerror(errno);
    return false;
}

void list_files(const std::string &root, const std::string &relative,
                std::vector<std::pair<std::string, long long>> *files) {
    DIR *dir = opendir((root + relative).c_str());
    if (dir == nullptr) return;
    while (struct dirent *entry = readdir(dir)) {
        if (entry->d_name[0] == '.') continue;
        std::string child = relative + "/" + entry->d_name;
        struct stat st;
        if (stat((root + child).c_str(), &st) != 0) continue;
        if (S_ISDIR(st.st_mode)) {
            list_files(root, child, files);
        } else {
            files->emplace_back(child, static_cast<long long>(st.st_size));
        }
    }
    closedir(dir);
}

// Ticks from the one at `at` on, at most `left`, that find nothing due: the
// statistics are off, or the interval write is still ahead and no tick falls
// in the daily write's window. Such a tick only counts the interval down and
// the ticks since the daily write up (and samples the cpp counter, which
// stays as it is while no event comes).
int64_t idle_ticks(int64_t at, int64_t left) {
    if (!__atomic_load_n(&g_authmng_statistic_enable, __ATOMIC_RELAXED)) return left;
    const uint32_t before_due = g_authmng_interval - 1u;  // the due tick makes it 0
    int64_t idle = left < before_due ? left : before_due;
    const uint32_t hour = __atomic_load_n(&g_authmng_write_file_clock, __ATOMIC_RELAXED);
    if (hour > 23 || idle == 0) return idle;
    // The window is the first two minutes of its local hour. Up to the next
    // local hour no tick enters it when the offset from UTC stays the same.
    time_t first = static_cast<time_t>(at);
    struct tm tm;
    if (localtime_r(&first, &tm) == nullptr) return 0;
    if (static_cast<uint32_t>(tm.tm_hour) == hour && tm.tm_min < 2) return 0;
    const long offset = tm.tm_gmtoff;
    const int64_t same_hour = 60 - tm.tm_min;
    if (same_hour < idle) idle = same_hour;
    time_t last = static_cast<time_t>(at + (idle - 1) * kTickSeconds);
    if (localtime_r(&last, &tm) == nullptr || tm.tm_gmtoff != offset) return 1;
    return idle;
}

}  // namespace

const char *client_name(int32_t client_type) {
    switch (client_type) {
        case AUTHMNG_CLIENT_WBA:
            return "webauth";
        case AUTHMNG_CLIENT_DOT1X:
            return "dot1x";
        default:
            return "cpp";
    }
}

bool Simulator::start(int32_t client_type, const std::string &out_dir, int64_t start_time,
                      std::string *error) {
    client_ = client_type;
    out_dir_ = out_dir;
    start_ = now_ = start_time;
    next_tick_ = start_time + kTickSeconds;
    if (!make_dir(out_dir, error) || !make_dir(out_dir + "/tmp", error) ||
        !make_dir(out_dir + "/flash", error)) {
        return false;
    }
    char real[PATH_MAX];
    if (realpath(out_dir.c_str(), real) == nullptr) {
        *error = "cannot resolve " + out_dir + ": " + strerror(errno);
        return false;
    }
    out_dir_ = real;
    setenv("TMPDIR", (out_dir_ + "/tmp").c_str(), 1);
    setenv("AUTHMNG_FLASH_HOME", (out_dir_ + "/flash").c_str(), 1);
    authmng_host_clock_set(start_time);

    std::string name = client_name(client_type);
    authmng_host_cli_bind(kSimShowPoint, ("show " + name + " authmng").c_str());
    authmng_host_cli_bind(kSimDebugPoint, ("debug " + name + " authmng").c_str());
    if (client_type == AUTHMNG_CLIENT_CPP) authmng_reg_cpp_callback(sample_cpp);

    authmng_reg_t reg = {client_type, kSimDebugPoint, kSimShowPoint};
    if (authmng_init(&reg) != 0) {
        *error = "authmng_init failed for the " + name + " client (see the syslog lines above)";
        return false;
    }
    return true;
}

void Simulator::advance_to(int64_t time) {
    while (next_tick_ <= time) {
        const int64_t idle = idle_ticks(next_tick_, (time - next_tick_) / kTickSeconds + 1);
        if (idle > 0) {
            pass_idle_ticks(idle);
            continue;
        }
        authmng_host_clock_set(next_tick_);
        authmng_timer_proc();
        ++ticks_;
        next_tick_ += kTickSeconds;
    }
    if (time > now_) now_ = time;
    authmng_host_clock_set(now_);
}

void Simulator::pass_idle_ticks(int64_t count) {
    if (__atomic_load_n(&g_authmng_statistic_enable, __ATOMIC_RELAXED)) {
        g_authmng_no_write_count += static_cast<uint32_t>(count);
        g_authmng_interval -= static_cast<uint32_t>(count);
        if (client_ == AUTHMNG_CLIENT_CPP && sample_cpp(0) > g_authmng_max_cpp) {
            g_authmng_max_cpp = sample_cpp(0);
        }
    }
    ticks_ += count;
    next_tick_ += count * kTickSeconds;
}

void Simulator::deliver(const TraceEvent &event) {
    advance_to(event.time);
    const KindInfo &kind = kind_info(event.kind);
    ++events_[event.kind];
    switch (kind.category) {
        case Category::Auth:
            authmng_notify_auth_info(&event.info);
            break;
        case Category::Redirect:
            authmng_notify_rd_info(&event.redirect);
            break;
        case Category::StationMove:
            authmng_notify_stamove_info(&event.move);
            break;
        case Category::EscapeCheck: {
            authmng_check_result_t verdict;
            authmng_get_check_result(&event.totals, &verdict);
            break;
        }
        case Category::Command:
            run_command(event.command);
            break;
        case Category::CppSample:
            __atomic_store_n(&g_cpp_value, event.cpp.value, __ATOMIC_RELAXED);
            break;
    }
}

int Simulator::run_command(const std::string &line) {
    int rc = authmng_host_cli_exec(line.c_str());
    if (rc == 0) {
        ++commands_run_;
    } else {
        ++commands_refused_;
    }
    return rc;
}

void Simulator::report(FILE *out) const {
    fprintf(out, "\nauthmng-sim: %s client, %s .. %s, %" PRId64 " timer ticks\n",
            client_name(client_), format_time(start_).c_str(), format_time(now_).c_str(), ticks_);
    fprintf(out, "events:");
    uint64_t total = 0;
    for (std::size_t i = 0; i < kKindCount; ++i) {
        if (events_[i] == 0 || kind_info(i).category == Category::Command) continue;
        fprintf(out, " %s %" PRIu64 ",", kind_info(i).name, events_[i]);
        total += events_[i];
    }
    fprintf(out, " total %" PRIu64 "\n", total);
    fprintf(out, "commands: %" PRIu64 " run, %" PRIu64 " refused\n", commands_run_,
            commands_refused_);
    std::vector<std::pair<std::string, long long>> files;
    list_files(out_dir_, "", &files);
    fprintf(out, "files under %s:\n", out_dir_.c_str());
    if (files.empty()) fprintf(out, "  (none)\n");
    for (const auto &file : files) {
        fprintf(out, "  %-56s %8lld bytes\n", file.first.c_str() + 1, file.second);
    }
}

}  // namespace authmng_sim
