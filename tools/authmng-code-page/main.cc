// authmng-code-page: writes the code-table reference page to the file
// named (or to standard output).
#include <cstdio>

#include "code_page.h"

int main(int argc, char **argv) {
    if (argc > 2) {
        fprintf(stderr, "usage: authmng-code-page [FILE]\n");
        return 2;
    }
    FILE *out = argc == 2 ? fopen(argv[1], "w") : stdout;
    if (out == nullptr) {
        perror(argv[1]);
        return 1;
    }
    code_page::write_page(out);
    return (argc == 2 ? fclose(out) : fflush(out)) == 0 ? 0 : 1;
}
