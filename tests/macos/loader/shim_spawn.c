/* Starting programs. A Mach-O program is started through the loader, by the words that the
 * environment variable MACHO_LAUNCHER holds: run_program, and an emulator in front of it where one
 * is needed. The objects of posix_spawn are pointers on macOS. */

#define _GNU_SOURCE

#include "shims.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

enum { MAX_LAUNCHER_WORDS = 16 };

static int is_macho(const char *path) {
    static const unsigned char universal[4] = {0xCA, 0xFE, 0xBA, 0xBE};
    static const unsigned char single[4] = {0xCF, 0xFA, 0xED, 0xFE};
    unsigned char magic[4] = {0};
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    const ssize_t length = file < 0 ? -1 : read(file, magic, sizeof magic);
    if (file >= 0) {
        close(file);
    }
    return length == 4 && (memcmp(magic, universal, 4) == 0 || memcmp(magic, single, 4) == 0);
}

static size_t count_of(char *const *list) {
    size_t count = 0;
    while (list[count] != NULL) {
        ++count;
    }
    return count;
}

/* The words of the launcher, the program, and its arguments without argv[0]; null without a
 * launcher. The first word points to memory of its own, which belongs to the caller, as the list
 * does. */
static char **command_in_loader(const char *path, char *const *argv) {
    const char *launcher = getenv("MACHO_LAUNCHER");
    char *rest = launcher != NULL ? strdup(launcher) : NULL;
    char **command = calloc(MAX_LAUNCHER_WORDS + count_of(argv) + 2, sizeof *command);
    size_t count = 0;
    char *word;
    if (rest == NULL || command == NULL) {
        free(rest);
        free(command);
        return NULL;
    }
    while (count < MAX_LAUNCHER_WORDS && (word = strsep(&rest, " ")) != NULL) {
        command[count++] = word;
    }
    command[count++] = (char *)(uintptr_t)path;
    memcpy(command + count, argv + 1, count_of(argv) * sizeof *argv);
    return command;
}

static int spawn_in_loader(pid_t *process, const char *path,
                           const posix_spawn_file_actions_t *actions,
                           const posix_spawnattr_t *attributes, char *const *argv,
                           char *const *environment) {
    char **command = command_in_loader(path, argv);
    int error = ENOEXEC;
    if (command != NULL) {
        error = posix_spawnp(process, command[0], actions, attributes, command, environment);
        free(command[0]);
        free(command);
    }
    return error;
}

static int execute(const char *path, char *const *argv) {
    char **command = is_macho(path) ? command_in_loader(path, argv) : NULL;
    if (command == NULL) {
        return execv(path, argv);
    }
    execvp(command[0], command);
    free(command[0]);
    free(command);
    return -1;
}

static int spawn(pid_t *process, const char *path, posix_spawn_file_actions_t *const *actions,
                 posix_spawnattr_t *const *attributes, char *const *argv,
                 char *const *environment) {
    const posix_spawn_file_actions_t *our_actions = actions != NULL ? *actions : NULL;
    const posix_spawnattr_t *our_attributes = attributes != NULL ? *attributes : NULL;
    return errno_to_macos(
        is_macho(path)
            ? spawn_in_loader(process, path, our_actions, our_attributes, argv, environment)
            : posix_spawn(process, path, our_actions, our_attributes, argv, environment));
}

static int actions_init(posix_spawn_file_actions_t **actions) {
    *actions = malloc(sizeof **actions);
    return *actions == NULL ? ENOMEM : posix_spawn_file_actions_init(*actions);
}

static int actions_destroy(posix_spawn_file_actions_t **actions) {
    posix_spawn_file_actions_destroy(*actions);
    free(*actions);
    return 0;
}

static int actions_dup(posix_spawn_file_actions_t **actions, int from, int to) {
    return errno_to_macos(posix_spawn_file_actions_adddup2(*actions, from, to));
}

static int attributes_init(posix_spawnattr_t **attributes) {
    *attributes = malloc(sizeof **attributes);
    return *attributes == NULL ? ENOMEM : posix_spawnattr_init(*attributes);
}

static int attributes_destroy(posix_spawnattr_t **attributes) {
    posix_spawnattr_destroy(*attributes);
    free(*attributes);
    return 0;
}

/* The POSIX flags have the same numbers on both systems; Apple's own are not passed on. */
static int attributes_flags(posix_spawnattr_t **attributes, short flags) {
    return posix_spawnattr_setflags(*attributes, (short)(flags & 0xF));
}

static int attributes_mask(posix_spawnattr_t **attributes, const uint32_t *mask) {
    sigset_t set;
    shim_signal_set(*mask, &set);
    return posix_spawnattr_setsigmask(*attributes, &set);
}

static int attributes_default(posix_spawnattr_t **attributes, const uint32_t *mask) {
    sigset_t set;
    shim_signal_set(*mask, &set);
    return posix_spawnattr_setsigdefault(*attributes, &set);
}

const struct shim shims_spawn[] = {SHIM("_posix_spawn", spawn),
                                   SHIM("_execv", execute),
                                   SHIM("_posix_spawn_file_actions_init", actions_init),
                                   SHIM("_posix_spawn_file_actions_destroy", actions_destroy),
                                   SHIM("_posix_spawn_file_actions_adddup2", actions_dup),
                                   SHIM("_posix_spawnattr_init", attributes_init),
                                   SHIM("_posix_spawnattr_destroy", attributes_destroy),
                                   SHIM("_posix_spawnattr_setflags", attributes_flags),
                                   SHIM("_posix_spawnattr_setsigmask", attributes_mask),
                                   SHIM("_posix_spawnattr_setsigdefault", attributes_default),
                                   SHIM("_environ", &environ),
                                   SHIM_END};
