/* dsmake.h: looks values up in data set files and scans texts for their records, for programs in C
 * and in languages that call C.
 *
 *     dsmake_data_set *set = dsmake_open("customers.ds", DSMAKE_HOLD_IN_MEMORY);
 *     int64_t count = dsmake_find(set, "Surname", "O'Brien");
 *     if (count < 0) fputs(dsmake_message(set), stderr);
 *     dsmake_close(set);
 *
 * Texts are UTF-8; a byte that is no UTF-8 stands for itself. They end with a zero byte, or have a
 * length in bytes where one is given. A null text is an empty one, also behind a length. Offsets of
 * records are in bytes from the start of the file; they are above 0.
 *
 * No exception leaves a function. With a null data set, scan or tokeniser a function does nothing
 * and returns what it returns after a failure.
 *
 * Threads: a handle (dsmake_data_set, dsmake_scan, dsmake_tokeniser) may be used by any thread, but
 * by one at a time. dsmake_share makes another handle on what is open already, for another thread;
 * it, dsmake_scan_open and the functions that take a pointer to a const data set, but for
 * dsmake_offsets, dsmake_message and dsmake_code, may be called by any number of threads at a time,
 * also while another one looks values up with the handle.
 */
#ifndef DSMAKE_H
#define DSMAKE_H

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#pragma GCC visibility push(default)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The version of the library, as "22.8.0". */
const char *dsmake_version(void);

/* A text with a length; the caller's. */
typedef struct dsmake_text {
    const char *bytes;
    size_t size;
} dsmake_text;

/* ---- Opening ---- */

/* A data set file that is open. */
typedef struct dsmake_data_set dsmake_data_set;

/* Flags of an opening: the file is held in memory, which takes as much as it is long. Lookups are
 * then about four times as fast, and what becomes of the file makes no difference. Scans read and
 * hold the file in any case; with this flag it is there once for both. */
enum { DSMAKE_HOLD_IN_MEMORY = 1 };

/* Opens a data set file of version 2, checks it and reads its index; reads all of it once. `flags`
 * is 0 or DSMAKE_HOLD_IN_MEMORY; others are refused. To be closed with dsmake_close also when it
 * failed, which dsmake_code tells; every use of the handle then fails, and for the same reason. Null
 * when there is no memory at all. */
dsmake_data_set *dsmake_open(const char *path, unsigned flags);

/* Another handle on the same open data set. Each is closed by itself, in any order. Null when there
 * is no memory. */
dsmake_data_set *dsmake_share(const dsmake_data_set *set);

/* Null is closed already. */
void dsmake_close(dsmake_data_set *set);

/* ---- Failures ---- */

/* Codes of failures. Those from 0x80000000 on are the ones that messages begin with, of which these
 * are met most. */
#define DSMAKE_OK 0u
#define DSMAKE_BAD_ARGUMENT 1u /* unknown flags, no such place in a list, a call out of order */
#define DSMAKE_NO_SUCH_KEY 2u
#define DSMAKE_TOO_LONG 3u /* a value of more than 15,000,000 words and marks */
#define DSMAKE_NO_MEMORY 0xC2000001u
#define DSMAKE_READ_FAILED 0xC2000013u
#define DSMAKE_NOT_OPENED 0xC2012515u
#define DSMAKE_BAD_CHECKSUM 0xC201251Au
#define DSMAKE_NO_DATA_SET 0xC2012521u
#define DSMAKE_OTHER_VERSION 0xC2012522u

/* What went wrong in the last call that can fail, and DSMAKE_OK when nothing did; of a null handle
 * DSMAKE_NO_MEMORY. */
uint32_t dsmake_code(const dsmake_data_set *set);

/* The same in words, beginning with the file's name; empty when nothing went wrong. Valid until the
 * handle is used again. */
const char *dsmake_message(const dsmake_data_set *set);

/* ---- Contents ---- */

/* Fields and keys are numbered from 0, in the file's order; names and types are valid until every
 * handle on the data set is closed. Past the end of a list, and of a data set that could not be
 * opened, counts are 0, names and types empty, and the field of a key -1. */
uint32_t dsmake_field_count(const dsmake_data_set *set);
const char *dsmake_field_name(const dsmake_data_set *set, uint32_t field);
/* "Simple", "SimpleNC" or "CCNUMBER"; empty for one that is not known. */
const char *dsmake_field_type(const dsmake_data_set *set, uint32_t field);

uint32_t dsmake_key_count(const dsmake_data_set *set);
const char *dsmake_key_name(const dsmake_data_set *set, uint32_t key);
/* The key's place among the fields; -1 when no field has its name, as can be in a file with several
 * keys from which equal records were left out. */
int64_t dsmake_key_field(const dsmake_data_set *set, uint32_t key);

/* How many records the file says that it has. */
uint64_t dsmake_record_count(const dsmake_data_set *set);

/* ---- Lookups ---- */

/* How many records have the value in the key field of that name (capitals count), all that have a
 * pair in its key table; -1 after a failure. The value is brought into the form of the key's type,
 * but not trimmed: with white space at its front it is another value. A value of which nothing is
 * left, such as an empty one, is in no record. */
int64_t dsmake_find(dsmake_data_set *set, const char *key, const char *value);

/* The same by the number of the key, for a value that may hold zero bytes. */
int64_t dsmake_find_text(dsmake_data_set *set, uint32_t key, const char *value, size_t size);

/* The same for many values. counts[i] is how many records have values[i]; the offsets of each stand
 * behind those of the one before. Returns how many there are in all; -1 after a failure, and then
 * the counts mean nothing. */
int64_t dsmake_find_many(dsmake_data_set *set, uint32_t key, const dsmake_text *values, size_t size,
                         uint64_t *counts);

/* Where the records that were found last stand, ascending for each value; as many as was said.
 * Valid until the handle is used again. */
const int64_t *dsmake_offsets(const dsmake_data_set *set);

/* ---- Records ---- */

/* Reads one record after the other, in the file's order, those without a pair in a key table too:
 * the first one, or the one behind the one of the last call. Returns its offset; 0 behind the last
 * record; -1 after a failure, which ends the records. */
int64_t dsmake_first_record(dsmake_data_set *set);
int64_t dsmake_next_record(dsmake_data_set *set);

/* Reads the record at an offset, such as one that was found; 0, or -1 after a failure. What
 * dsmake_next_record reads next stays as it was. */
int dsmake_read_record(dsmake_data_set *set, int64_t offset);

/* How many token values the record that was read last has in a field, and the values, valid until
 * the handle is used again; -1 after a failure. */
int64_t dsmake_record_values(dsmake_data_set *set, uint32_t field, const uint64_t **values);

/* ---- Scans ---- */

/* A record that a text holds. What the pointers lead to lasts until the listener returns. */
typedef struct dsmake_find_in_text {
    uint64_t line;      /* of the occurrence's first character; lines end at LF, the first is 1 */
    uint64_t place;     /* of that character, in bytes from the front of the text; of a text in
                           UTF-16, in its UTF-8 without a mark */
    uint64_t length;    /* of the occurrence, in bytes, likewise */
    int64_t record;     /* the record's offset */
    dsmake_text quote;  /* the occurrence as written, its first 1,000 characters, in UTF-8 with the
                           bytes that are none; no zero byte ends it */
    int quote_is_whole;
    uint32_t key;       /* the number of the field that occurs there */
    const uint32_t *fields; /* the numbers of the fields that occur near enough, ascending */
    uint32_t field_count;
} dsmake_find_in_text;

/* Is told each record once, in the order of the places. 0 ends the scan of this text. It must not
 * use the scan that calls it, nor throw. */
typedef int dsmake_listener(void *context, const dsmake_find_in_text *find);

/* Scans texts, one after the other, for the records of a data set. */
typedef struct dsmake_scan dsmake_scan;

#define DSMAKE_USUAL_LEAST 0u           /* 2, or 1 where records have one field */
#define DSMAKE_ANY_DISTANCE UINT64_MAX  /* no bound */

/* Keys are the fields with a key table. A record is found where a key of it occurs and, with this
 * one, at least `least` of its fields, the others within `within` words of it (100 are usual). The
 * first scan of a data set takes up to half of the file's size in memory for a table, and some
 * time, which all later ones share. A scan may outlive the handle. To be closed with
 * dsmake_scan_close also when it failed, which dsmake_scan_code tells: `least` is above the number
 * of fields, or the data set cannot be scanned. Null when there is no memory at all. */
dsmake_scan *dsmake_scan_open(const dsmake_data_set *set, uint64_t least, uint64_t within);
void dsmake_scan_close(dsmake_scan *scan);

/* A text comes in pieces of any size: start, any number of feeds, finish. Whatever of another text
 * was not finished is forgotten. Keep one scan for many texts: what it learnt of words serves the
 * next one. `listener` may be null. Each returns 1; 0 when the listener has ended the scan, and then
 * what is still fed is passed over; -1 after a failure, and then dsmake_scan_start begins anew. */
int dsmake_scan_start(dsmake_scan *scan, dsmake_listener *listener, void *context);
int dsmake_scan_feed(dsmake_scan *scan, const void *bytes, size_t size);
int dsmake_scan_finish(dsmake_scan *scan);

/* As dsmake_code and dsmake_message. */
uint32_t dsmake_scan_code(const dsmake_scan *scan);
const char *dsmake_scan_message(const dsmake_scan *scan);

/* ---- Token values without a data set ---- */

/* The token values that a record would have for a text in a field of a type, white space around the
 * text left out as in a build. Values are equal for dsmake when these are. Returns how many there
 * are, of which the first `room` are put into `values`; -1 for a type that is none of the three, for
 * a text of more than 15,000,000 words and marks, and when there is no memory. */
int64_t dsmake_token_values(const char *type, const char *text, size_t size, uint64_t *values,
                            size_t room);

/* The same for whole lines of a table, as dsmake reads them. */
typedef struct dsmake_tokeniser dsmake_tokeniser;

/* By the types of the columns. Null for a type that is none of the three, and when there is no
 * memory. */
dsmake_tokeniser *dsmake_tokeniser_open(const char *const *types, size_t count);
void dsmake_tokeniser_close(dsmake_tokeniser *tokeniser);

/* For each field of a line (separated by TAB, without its end) the number of its token values and
 * then these; two lines are equal records when all of it is equal. Valid until the next call.
 * Returns how many numbers there are in all; -1 when the line has more or fewer fields than there
 * are types, else as dsmake_token_values. */
int64_t dsmake_line_values(dsmake_tokeniser *tokeniser, const char *line, size_t size,
                           const uint64_t **numbers);

#ifdef __cplusplus
}
#endif

#if defined(__GNUC__)
#pragma GCC visibility pop
#endif

#endif
