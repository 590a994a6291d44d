#ifndef SCALER_ISP_TESTS_BLACKBOX_JOURNAL_H
#define SCALER_ISP_TESTS_BLACKBOX_JOURNAL_H

/* What the recording plug-ins write down and how they find their answers. Both files lie in the
 * folder that the environment variable BLACKBOX_DIR names.
 *
 * events.txt: one line a call, the function and then NAME=VALUE of every field that differs from
 * its default. The host writes its own lines into the same file, so the order shows.
 *
 * answers.txt: lines FUNCTION VERB ARGUMENT for every call of a function, or FUNCTION#N for its Nth
 * call since the plug-in was loaded. The line "journal off" silences the journal. The verbs:
 *   returns NUMBER    the result (otherwise 0 from the ISP plug-in, 1 from sign/verify)
 *   progress NUMBER   calls the progress callback
 *   message TEXT      calls the message callback
 *   prints TEXT       writes TEXT and a line end to standard output through stdio
 *   key NUMBER        writes that many bytes 0x5A into the key buffer
 *   throws WHAT       an exception of the throwing plug-in: int or exception */

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

struct answer {
    char verb[16];
    char argument[1024];
};

#define JOURNAL_MAX_ANSWERS 64

/* The answers for this call, in the order of the file. RETURNS their number. */
size_t journal_answers(const char *function, int call, struct answer *answers);

/* Opens the journal for one line, which starts with the function's name; null when it is silenced.
 * The writers below take null. */
FILE *journal_begin(const char *function);
void journal_end(FILE *file);

void journal_number(FILE *file, const char *name, int64_t value, int64_t expected);
/* Bytes in hexadecimal, equal neighbours as XX*COUNT. */
void journal_bytes(FILE *file, const char *name, const unsigned char *bytes, size_t count);
/* The quoted text up to the first zero; "(full)" follows when there is none, and everything that is
 * not zero after it as +POSITION"…". */
void journal_wide(FILE *file, const char *name, const wchar_t *text, size_t capacity);
/* The value alone; file is not null. */
void journal_wide_value(FILE *file, const wchar_t *text, size_t capacity);
void journal_narrow(FILE *file, const char *name, const char *text, size_t capacity);

#ifdef __cplusplus
}
#endif

#endif
