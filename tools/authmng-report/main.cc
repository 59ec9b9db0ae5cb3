// authmng-report: the files of one or more devices -> one HTML report, and
// with --tidy the same data as tidy CSV tables.
#include <getopt.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "html.h"
#include "model.h"
#include "storage.h"
#include "tidy.h"

using namespace authmng_report;

namespace {

void usage(FILE *out) {
    fprintf(out,
            "usage: authmng-report [options] TREE...\n"
            "  TREE               a device's storage tree (flash and/or temporary area, any\n"
            "                     subset of the files), or a single file; one device each\n"
            "  -o, --out FILE     the HTML report (default authmng-report.html)\n"
            "  --tidy DIR         also write the data as tidy CSV tables into DIR\n"
            "  --year YEAR        the year of each file's first row (default: the year of\n"
            "                     each file's last row is that of its modification time)\n"
            "  --threshold PCT    success rate below which an interval is bad (default 85)\n"
            "  --min-auths N      intervals with fewer authentications are never bad\n"
            "                     (default 50)\n"
            "  --escape-life MIN  minutes an escape lasts after its last trigger (default 30)\n"
            "  -h, --help         this text\n");
}

bool number_option(const char *name, const char *text, double low, double high, double *out) {
    char *end = nullptr;
    double v = strtod(text, &end);
    if (end == text || *end != '\0' || !(v >= low && v <= high)) {
        fprintf(stderr, "authmng-report: %s: '%s' is not a number from %g to %g\n", name, text, low,
                high);
        return false;
    }
    *out = v;
    return true;
}

bool write_text(const std::string &path, const std::string &text) {
    FILE *f = fopen(path.c_str(), "w");
    if (f == nullptr || fwrite(text.data(), 1, text.size(), f) != text.size() || fclose(f) != 0) {
        fprintf(stderr, "authmng-report: cannot write %s: %s\n", path.c_str(), strerror(errno));
        return false;
    }
    return true;
}

}  // namespace

int main(int argc, char **argv) {
    enum { kTidy = 1000, kYear, kThreshold, kMinAuths, kEscapeLife };
    static const struct option longs[] = {
        {"out", required_argument, nullptr, 'o'},
        {"tidy", required_argument, nullptr, kTidy},
        {"year", required_argument, nullptr, kYear},
        {"threshold", required_argument, nullptr, kThreshold},
        {"min-auths", required_argument, nullptr, kMinAuths},
        {"escape-life", required_argument, nullptr, kEscapeLife},
        {"help", no_argument, nullptr, 'h'},
        {nullptr, 0, nullptr, 0},
    };
    std::string out = "authmng-report.html", tidy;
    double year = 0, life = 30;
    Settings settings;
    int c;
    while ((c = getopt_long(argc, argv, "o:h", longs, nullptr)) != -1) {
        bool ok = true;
        switch (c) {
            case 'o':
                out = optarg;
                break;
            case kTidy:
                tidy = optarg;
                break;
            case kYear:
                ok = number_option("--year", optarg, 1970, 9999, &year);
                break;
            case kThreshold:
                ok = number_option("--threshold", optarg, 0, 100, &settings.threshold);
                break;
            case kMinAuths:
                ok = number_option("--min-auths", optarg, 0, 1e12, &settings.min_auths);
                break;
            case kEscapeLife:
                ok = number_option("--escape-life", optarg, 1, 100000, &life);
                break;
            case 'h':
                usage(stdout);
                return 0;
            default:
                ok = false;
        }
        if (!ok) {
            usage(stderr);
            return 2;
        }
    }
    if (optind == argc) {
        fprintf(stderr, "authmng-report: no storage tree given\n");
        usage(stderr);
        return 2;
    }
    settings.escape_life = static_cast<int>(life);

    std::vector<TreeFiles> trees;
    Model model;
    model.settings = settings;
    size_t files = 0;
    for (int i = optind; i < argc; ++i) {
        trees.push_back(read_tree(argv[i], static_cast<int>(year)));
        TreeFiles &tree = trees.back();
        // Two trees of the same name stay two devices.
        for (size_t j = 0; j + 1 < trees.size(); ++j) {
            if (trees[j].label == tree.label)
                tree.label += " (" + std::to_string(i - optind + 1) + ")";
        }
        for (const std::string &note : tree.notes)
            fprintf(stderr, "authmng-report: %s\n", note.c_str());
        files += tree.files.size();
        Device device = build_device(tree.label, tree.files, settings);
        device.notes.insert(device.notes.begin(), tree.notes.begin(), tree.notes.end());
        model.devices.push_back(device);
    }
    model.episodes = find_episodes(model.devices, settings);
    if (!write_text(out, render_report(model))) return 1;
    printf("authmng-report: %zu file(s) of %zu device(s), %zu episode(s): wrote %s\n", files,
           model.devices.size(), model.episodes.size(), out.c_str());
    if (!tidy.empty()) {
        if (mkdir(tidy.c_str(), 0777) != 0 && errno != EEXIST) {
            fprintf(stderr, "authmng-report: cannot create %s: %s\n", tidy.c_str(),
                    strerror(errno));
            return 1;
        }
        for (const auto &table : tidy_tables(trees)) {
            if (table.second.empty()) continue;
            if (!write_text(tidy + "/" + table.first, table.second)) return 1;
            printf("authmng-report: wrote %s/%s\n", tidy.c_str(), table.first.c_str());
        }
    }
    return files > 0 ? 0 : 1;
}
