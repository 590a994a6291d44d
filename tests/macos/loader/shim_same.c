/* Functions whose interface is the same on both systems. */

#define _GNU_SOURCE

#include "shims.h"

#include <dirent.h>
#include <iconv.h>
#include <math.h>
#include <stdio.h>
#include <stdio_ext.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>
#include <wchar.h>

extern int __cxa_atexit(void (*)(void *), void *, void *);
extern void *__emutls_get_address(void *); /* of the compiler's library */
extern __int128 __divti3(__int128, __int128);
extern unsigned __int128 __udivti3(unsigned __int128, unsigned __int128);
extern unsigned __int128 __umodti3(unsigned __int128, unsigned __int128);

#define SAME(NAME)                                                                                 \
    { "_" #NAME, (void *)(NAME) }

const struct shim shims_same[] = {
    SAME(abort), SAME(atexit), SAME(access), SAME(aligned_alloc), SAME(atoi), SAME(calloc),
    SAME(chdir), SAME(chmod), SAME(chown), SAME(clearerr), SAME(close), SAME(closedir), SAME(_exit),
    SAME(exit), SAME(fchmod), SAME(fchown), SAME(fclose), SAME(fdopen), SAME(feof), SAME(ferror),
    SAME(fflush), SAME(fgetc), SAME(fgets), SAME(fileno), SAME(flock), SAME(fopen), SAME(fork),
    SAME(fprintf), SAME(freopen), SAME(fputc), SAME(fputs), SAME(fputwc), SAME(fread), SAME(free),
    SAME(fseek), SAME(fseeko), SAME(ftell), SAME(ftello), SAME(ftruncate), SAME(fwrite), SAME(getc),
    SAME(getcwd), SAME(getenv), SAME(getegid), SAME(geteuid), SAME(getpid), SAME(getppid),
    SAME(getwc), SAME(gmtime_r), SAME(iconv_close), SAME(link), SAME(localtime_r), SAME(lseek),
    SAME(malloc), SAME(mbsinit), SAME(memchr), SAME(memcmp), SAME(memcpy), SAME(memmove),
    SAME(memset), SAME(mkdir), SAME(mkdtemp), SAME(mkfifo), SAME(mkstemp), SAME(nanosleep),
    SAME(pause), SAME(perror), SAME(pow), SAME(pread), SAME(printf), SAME(putchar), SAME(puts),
    SAME(pwrite), SAME(rand), SAME(read), SAME(readlink), SAME(realloc), SAME(remove), SAME(rename),
    SAME(rewind), SAME(rmdir), SAME(setbuf), SAME(setenv), SAME(setgid), SAME(setuid),
    SAME(setvbuf), SAME(snprintf), SAME(sscanf), SAME(strcasecmp), SAME(strcat), SAME(strchr),
    SAME(strcmp), SAME(strcpy), SAME(strcspn), SAME(strdup), SAME(strlen), SAME(strncmp),
    SAME(strncpy), SAME(strnlen), SAME(strrchr), SAME(strspn), SAME(strstr), SAME(strtod),
    SAME(strtof), SAME(strtol), SAME(strtold), SAME(strtoll), SAME(strtoul), SAME(strtoull),
    SAME(swprintf), SAME(symlink), SAME(time), SAME(tmpfile), SAME(truncate), SAME(umask),
    SAME(ungetc), SAME(ungetwc), SAME(unlink), SAME(unsetenv), SAME(usleep), SAME(vfprintf),
    SAME(vprintf), SAME(vsnprintf), SAME(vswprintf), SAME(wcscmp), SAME(wcslen), SAME(wcsncpy),
    SAME(wcsnlen), SAME(wcsstr), SAME(wcstod), SAME(wcstof), SAME(wcstol), SAME(wcstold),
    SAME(wcstoll), SAME(wcstoul), SAME(wcstoull), SAME(wmemchr), SAME(wmemcmp), SAME(wmemcpy),
    SAME(wmemmove), SAME(wmemset), SAME(write),
    /* the same under another name */
    SHIM("___bzero", bzero), SHIM("_bzero", bzero), SHIM("_fpurge", __fpurge),
    SHIM("_opendir", opendir), SHIM("_opendir$INODE64", opendir),
    SHIM("___cxa_atexit", __cxa_atexit), SHIM("___emutls_get_address", __emutls_get_address),
    SHIM("___divti3", __divti3), SHIM("___udivti3", __udivti3), SHIM("___umodti3", __umodti3),
    SHIM_END};
