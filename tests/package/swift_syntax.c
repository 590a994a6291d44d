/* Prints where a Swift source cannot be parsed; ends with 1 where it cannot, with 2 if there is
 * nothing to parse. It sees the syntax alone: no types, no names.
 *
 * usage: swift_syntax FILE
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <tree_sitter/api.h>

enum { MAXIMUM_BYTES = 1 << 20 };

const TSLanguage *tree_sitter_swift(void);

static int ReportErrors(TSNode node) {
    int errors = 0;
    if (ts_node_is_missing(node) || strcmp(ts_node_type(node), "ERROR") == 0) {
        const TSPoint where = ts_node_start_point(node);
        printf("line %u, column %u: %s\n", where.row + 1, where.column + 1,
               ts_node_is_missing(node) ? "something is missing" : "cannot be parsed");
        errors = 1;
    }
    for (uint32_t i = 0; i < ts_node_child_count(node); ++i) {
        errors += ReportErrors(ts_node_child(node, i));
    }
    return errors;
}

int main(int argc, char **argv) {
    static char text[MAXIMUM_BYTES];
    FILE *file = argc == 2 ? fopen(argv[1], "rb") : NULL;
    const size_t length = file ? fread(text, 1, sizeof text, file) : 0;
    TSParser *parser = ts_parser_new();
    if (length == 0 || length == sizeof text ||
        !ts_parser_set_language(parser, tree_sitter_swift())) {
        fprintf(stderr, "swift_syntax: no file to parse, or a grammar of another version\n");
        return 2;
    }
    TSTree *tree = ts_parser_parse_string(parser, NULL, text, (uint32_t)length);
    return ReportErrors(ts_tree_root_node(tree)) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
