// The files of a storage tree copied from a device: every statistic,
// abnormal, escape-log and cpp file below it, read whole.
#ifndef AUTHMNG_REPORT_STORAGE_H
#define AUTHMNG_REPORT_STORAGE_H

#include <string>
#include <vector>

#include "rows.h"

namespace authmng_report {

struct TreeFiles {
    std::string label;               // the tree's own folder name
    std::vector<ParsedFile> files;   // by path
    std::vector<std::string> notes;  // files that could not be read or were not recognised
};

// Reads the tree at root (a folder, or a single file). first_year: --year,
// 0 to take years from the files' modification times.
TreeFiles read_tree(const std::string &root, int first_year);

// The label of a tree: its last path component ("." and "/" stand for the
// current folder's name as typed).
std::string tree_label(const std::string &root);

}  // namespace authmng_report

#endif
