// The report page: one self-contained HTML file (inline SVG, inline style
// and one small filter script, nothing fetched). Every text from the files
// is escaped.
#ifndef AUTHMNG_REPORT_HTML_H
#define AUTHMNG_REPORT_HTML_H

#include <string>

#include "model.h"

namespace authmng_report {

std::string render_report(const Model &model);

}  // namespace authmng_report

#endif
