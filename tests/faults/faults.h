#ifndef SCALER_ISP_TESTS_FAULTS_FAULTS_H
#define SCALER_ISP_TESTS_FAULTS_FAULTS_H

/* Functions of the preloaded object (faulty.c) that makes operations of the C library fail. A
 * program finds them with dlsym(RTLD_DEFAULT, ...); without the preloaded object there are none.
 *
 * Calls are counted from faults_arm to faults_disarm, on the arming thread only. Of the chosen
 * operation the first-th call fails, and with `forever` every later one too.
 *
 * A whole process is armed from its start by the environment variable
 *   FAULTS_ARM=DEPTH:OPERATION:FIRST:FOREVER:ERRNO
 * DEPTH 0 is the process itself, 1 its children and so on; there, all threads count,
 * and the file that FAULTS_REPORT names appears as soon as a call has failed. */

/* Operations: what fails, and the errno values that the check uses for it. */
#define FAULTS_OPERATIONS(X)                                                                       \
    X(memory)                                                                                      \
    X(iconv_open)                                                                                  \
    X(iconv)                                                                                       \
    X(newlocale)                                                                                   \
    X(multibyte)                                                                                   \
    X(open)                                                                                        \
    X(opendir)                                                                                     \
    X(readdir)                                                                                     \
    X(read)                                                                                        \
    X(short_read)                                                                                  \
    X(seek)                                                                                        \
    X(stat)                                                                                        \
    X(write)                                                                                       \
    X(short_write)                                                                                 \
    X(rename)                                                                                      \
    X(close)                                                                                       \
    X(flock)                                                                                       \
    X(owner)                                                                                       \
    X(unlink)                                                                                      \
    X(realpath)                                                                                    \
    X(dlopen)                                                                                      \
    X(dladdr)                                                                                      \
    X(pipe)                                                                                        \
    X(process)                                                                                     \
    X(thread)                                                                                      \
    X(duplicate)

#define FAULTS_ENUMERATOR(NAME) FAULTS_##NAME,
enum faults_operation { FAULTS_OPERATIONS(FAULTS_ENUMERATOR) FAULTS_COUNT };

/* As the errno value: the process is killed where the operation begins. */
#define FAULTS_KILL 1000

void faults_arm(int operation, long first, int forever, int error);
void faults_disarm(void);

/* Between these two nothing fails and nothing is counted; they nest. */
void faults_pause(void);
void faults_resume(void);

/* Calls of an operation and calls that were made to fail, since faults_arm. */
long faults_calls(int operation);
long faults_injected(void);

/* Blocks of memory in use in this process, armed or not. */
long faults_live_blocks(void);

/* The same without what the C library allocated for itself, and with the files, directories and
 * converters that are open. It counts when memory ended inside the C library, which then loses
 * blocks of its own: faults_in_c_library tells that since faults_arm. */
long faults_live_of_others(void);
int faults_in_c_library(void);

#endif
