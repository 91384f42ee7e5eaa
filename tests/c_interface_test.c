/* The C interface as a program in C99 uses it: c_interface_test FILE, a data set with the key Name
 * whose first record has "a b0" there and whose third has "a b2". */
#include "dsmake.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static void expect(int is_so, const char *what) {
    if (is_so) return;
    fprintf(stderr, "not so: %s\n", what);
    exit(1);
}
#define EXPECT(what) expect(what, #what)

static void look_up(const char *path, unsigned flags) {
    dsmake_data_set *const set = dsmake_open(path, flags);
    EXPECT(strcmp(dsmake_message(set), "") == 0);
    EXPECT(dsmake_find(set, "Name", "A B2") == 1);
    EXPECT(dsmake_offsets(set)[0] == 64 + 2 * 29);
    EXPECT(dsmake_find(set, "Name", " A B2") == 0); /* not trimmed */
    EXPECT(dsmake_find(set, "Name", "") == 0);
    EXPECT(strcmp(dsmake_message(set), "") == 0);
    EXPECT(dsmake_find(set, "name", "A B2") == -1);
    EXPECT(strncmp(dsmake_message(set), path, strlen(path)) == 0);
    EXPECT(strstr(dsmake_message(set), ": no such key: name") != NULL);
    EXPECT(dsmake_find(set, "Name", "a b0") == 1);
    EXPECT(strcmp(dsmake_message(set), "") == 0);
    dsmake_close(set);
}

/* More words and marks than a value may have: an exception inside. */
static void look_up_too_much(const char *path) {
    enum { MARKS = 15000001 };
    char *const marks = malloc(MARKS + 1);
    dsmake_data_set *const set = dsmake_open(path, 0);
    EXPECT(marks != NULL);
    memset(marks, '-', MARKS);
    marks[MARKS] = '\0';
    EXPECT(dsmake_find(set, "Name", marks) == -1);
    EXPECT(strncmp(dsmake_message(set), path, strlen(path)) == 0);
    EXPECT(dsmake_code(set) == DSMAKE_TOO_LONG);
    free(marks);
    dsmake_close(set);
}

static void open_none(void) {
    dsmake_data_set *const set = dsmake_open("no such file", DSMAKE_HOLD_IN_MEMORY);
    EXPECT(strncmp(dsmake_message(set), "no such file: ", 14) == 0);
    EXPECT(dsmake_find(set, "Name", "a b0") == -1);
    EXPECT(strncmp(dsmake_message(set), "no such file: ", 14) == 0);
    dsmake_close(set);
    dsmake_close(NULL);
}

int main(int argument_count, char **arguments) {
    EXPECT(argument_count == 2);
    look_up(arguments[1], 0);
    look_up(arguments[1], DSMAKE_HOLD_IN_MEMORY);
    look_up_too_much(arguments[1]);
    open_none();
    return 0;
}
