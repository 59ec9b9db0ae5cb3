// The code-table reference page (docs/code-tables.md), written from the
// library's own text tables.
#ifndef AUTHMNG_CODE_PAGE_H
#define AUTHMNG_CODE_PAGE_H

#include <cstdio>

namespace code_page {

void write_page(FILE *out);

}  // namespace code_page

#endif
