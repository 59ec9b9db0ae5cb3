#include "storage.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace authmng_report {
namespace {

constexpr const char *kFileNames[] = {"dot1x_statistic.csv",
                                      "dot1x_abnormal.csv",
                                      "wba_statistic.csv",
                                      "wba_substatistic.csv",
                                      "wba_abnormal.csv",
                                      "log.txt",
                                      "cpp.csv"};
constexpr off_t kMaxFileSize = 64 << 20;  // far above any size limit of the library
constexpr int kMaxDepth = 16;

bool known_name(const std::string &name) {
    for (const char *known : kFileNames) {
        if (name == known) return true;
    }
    return false;
}

std::string base_name(const std::string &path) {
    size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// shown: the path as reports name it, relative to the tree.
void read_file(const std::string &path, const std::string &shown, int first_year, TreeFiles *tree) {
    struct stat st;
    FILE *f = fopen(path.c_str(), "rb");
    if (f == nullptr || fstat(fileno(f), &st) != 0 || st.st_size > kMaxFileSize) {
        tree->notes.push_back(shown + ": cannot be read or is too large, left out");
        if (f != nullptr) fclose(f);
        return;
    }
    std::string text(static_cast<size_t>(st.st_size), '\0');
    size_t got = fread(&text[0], 1, text.size(), f);
    fclose(f);
    text.resize(got);
    std::string first_line = text.substr(0, text.find('\n'));
    FileKind kind = detect_kind(base_name(path), first_line);
    if (kind == FileKind::kUnknown) {
        // A file restarted mid-copy may begin with rows: its header comes later.
        size_t header = text.find("\ndate,");
        if (header == std::string::npos) header = text.find("\ntime,");
        if (header != std::string::npos) {
            kind = detect_kind(base_name(path), text.substr(header + 1, 64));
        }
    }
    if (kind == FileKind::kUnknown) {
        tree->notes.push_back(shown + ": not a file of the library (unknown header), left out");
        return;
    }
    tree->files.push_back(parse_file(kind, shown, text, YearRule{st.st_mtime, first_year}));
}

void walk(const std::string &dir, const std::string &shown_dir, int depth, int first_year,
          TreeFiles *tree) {
    DIR *d = opendir(dir.c_str());
    if (d == nullptr) return;
    std::vector<std::string> names;
    while (struct dirent *entry = readdir(d)) {
        if (strcmp(entry->d_name, ".") != 0 && strcmp(entry->d_name, "..") != 0) {
            names.emplace_back(entry->d_name);
        }
    }
    closedir(d);
    std::sort(names.begin(), names.end());
    for (const std::string &name : names) {
        std::string path = dir + "/" + name;
        std::string shown = shown_dir.empty() ? name : shown_dir + "/" + name;
        struct stat st;
        if (lstat(path.c_str(), &st) != 0) continue;
        if (S_ISDIR(st.st_mode) && depth < kMaxDepth) {
            walk(path, shown, depth + 1, first_year, tree);
        } else if (S_ISREG(st.st_mode) && known_name(name)) {
            read_file(path, shown, first_year, tree);
        }
    }
}

}  // namespace

std::string tree_label(const std::string &root) {
    std::string path = root;
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    std::string label = base_name(path);
    return label.empty() || label == "." || label == ".." ? path : label;
}

TreeFiles read_tree(const std::string &root, int first_year) {
    TreeFiles tree;
    tree.label = tree_label(root);
    struct stat st;
    if (stat(root.c_str(), &st) != 0) {
        tree.notes.push_back(root + ": not found");
    } else if (S_ISDIR(st.st_mode)) {
        walk(root, "", 0, first_year, &tree);
    } else {
        read_file(root, base_name(root), first_year, &tree);
    }
    if (tree.files.empty()) tree.notes.push_back(root + ": no statistic files found");
    return tree;
}

}  // namespace authmng_report
