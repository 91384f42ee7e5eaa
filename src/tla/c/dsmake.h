/* dsmake.h: looks values up in data set files, for programs in C and in languages that call C.
 *
 *     dsmake_data_set *set = dsmake_open("customers.ds", DSMAKE_HOLD_IN_MEMORY);
 *     int64_t count = dsmake_find(set, "Surname", "O'Brien");
 *     if (count < 0) fputs(dsmake_message(set), stderr);
 *     dsmake_close(set);
 *
 * Texts are UTF-8 and end with a zero byte; a byte that is no UTF-8 stands for itself. No exception
 * leaves a function. A data set may be used by any thread, but by one at a time; each thread can
 * have one of its own, of the same file too.
 */
#ifndef DSMAKE_H
#define DSMAKE_H

#include <stdint.h>

#if defined(__GNUC__)
#pragma GCC visibility push(default)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* A data set file that is open. */
typedef struct dsmake_data_set dsmake_data_set;

/* Flags of an opening: the file is held in memory, which takes as much as it is long. Lookups are
 * then about four times as fast, and what becomes of the file makes no difference. */
enum { DSMAKE_HOLD_IN_MEMORY = 1 };

/* Opens a data set file of version 2, checks it and reads its index; reads all of it once. `flags`
 * is 0 or DSMAKE_HOLD_IN_MEMORY. To be closed with dsmake_close also when it failed, which
 * dsmake_message tells. Null when there is no memory at all. */
dsmake_data_set *dsmake_open(const char *path, unsigned flags);

/* How many records have the value in the key field of that name (capitals count), all that have a
 * pair in its key table; -1 after a failure, which dsmake_message tells: the data set could not be
 * opened, has no such key, cannot be read any more, or the value has more than 15,000,000 words and
 * marks. The value is brought into the form of the key's type, but not trimmed: with white space at
 * its front it is another value. A value of which nothing is left, such as an empty one, is in no
 * record. */
int64_t dsmake_find(dsmake_data_set *set, const char *key, const char *value);

/* Where the records that were found last stand, in bytes from the start of the file, ascending; as
 * many as dsmake_find said. Valid until the data set is used again. */
const int64_t *dsmake_offsets(const dsmake_data_set *set);

/* What went wrong in the last dsmake_open or dsmake_find, beginning with the file's name; empty when
 * nothing did. Valid until the data set is used again. */
const char *dsmake_message(const dsmake_data_set *set);

/* Null is closed already. */
void dsmake_close(dsmake_data_set *set);

#ifdef __cplusplus
}
#endif

#if defined(__GNUC__)
#pragma GCC visibility pop
#endif

#endif
