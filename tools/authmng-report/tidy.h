// The data of the files as tidy CSV tables: one observation a row, ISO-8601
// local times with their year, plain numbers, and for every statistic
// whether it is an interval difference, a running total or a current value.
#ifndef AUTHMNG_REPORT_TIDY_H
#define AUTHMNG_REPORT_TIDY_H

#include <string>
#include <utility>
#include <vector>

#include "storage.h"

namespace authmng_report {

// A CSV field, quoted when it holds a comma, a quote or a line end.
std::string csv_field(const std::string &text);

// The tidy tables as (file name, contents):
//   statistics.csv       device,file,client,time,measure,value,kind
//   abnormal_dot1x.csv   device,file,time,<the file's columns>
//   abnormal_webauth.csv device,file,time,<the file's columns>
//   escape_log.csv       device,file,time,check,average,sample
// kind is "interval" (a difference over the interval, or for cpp its
// highest sample), "total" (a running total since the last clear) or
// "current" (the value when the row was written).
std::vector<std::pair<std::string, std::string>> tidy_tables(const std::vector<TreeFiles> &trees);

}  // namespace authmng_report

#endif
