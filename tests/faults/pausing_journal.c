/* Linked into the recording plug-ins: what they do themselves is no call of the library, so nothing
 * fails while they write down how they were called and read how to answer. The linker sends the
 * calls of the journal here (--wrap). */

#include "../blackbox/journal.h"

#include "faults.h"

#pragma weak faults_pause
#pragma weak faults_resume

FILE *__real_journal_begin(const char *function);
FILE *__wrap_journal_begin(const char *function);
void __real_journal_end(FILE *file);
void __wrap_journal_end(FILE *file);
size_t __real_journal_answers(const char *function, int call, struct answer *answers);
size_t __wrap_journal_answers(const char *function, int call, struct answer *answers);

static void pause_faults(void) {
    if (faults_pause) {
        faults_pause();
    }
}

static void resume_faults(void) {
    if (faults_resume) {
        faults_resume();
    }
}

FILE *__wrap_journal_begin(const char *function) {
    pause_faults();
    return __real_journal_begin(function);
}

void __wrap_journal_end(FILE *file) {
    __real_journal_end(file);
    resume_faults();
}

size_t __wrap_journal_answers(const char *function, int call, struct answer *answers) {
    size_t count;
    pause_faults();
    count = __real_journal_answers(function, call, answers);
    resume_faults();
    return count;
}
