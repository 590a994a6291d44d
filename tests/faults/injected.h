#ifndef SCALER_ISP_TESTS_FAULTS_INJECTED_H
#define SCALER_ISP_TESTS_FAULTS_INJECTED_H

/* What both hosts share: the functions of the preloaded object, the descriptors of the process, and
 * one order of the driver. An order is a line OPERATION FIRST FOREVER ERRNO; operation -1 fails
 * nothing. */

#include <dlfcn.h>
#include <fcntl.h>
#include <locale.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "faults.h"

#define MAX_DESCRIPTORS 128

struct order {
    int operation;
    long first;
    int forever;
    int error;
};

struct injector {
    void (*arm)(int, long, int, int);
    void (*disarm)(void);
    void (*pause)(void);
    void (*resume)(void);
    long (*calls)(int);
    long (*injected)(void);
    long (*live)(void);
    long (*live_of_others)(void);
    int (*in_c_library)(void);
};

static inline unsigned seconds_to_a_hang(void) {
    const char *text = getenv("FAULTS_SECONDS");
    return text == NULL ? 10 : (unsigned)atoi(text);
}

static inline void find_function(const char *name, void *slot) {
    void *symbol = dlsym(RTLD_DEFAULT, name);
    if (symbol == NULL) {
        fprintf(stderr, "%s is missing: preload the faulty library\n", name);
        exit(2);
    }
    memcpy(slot, &symbol, sizeof symbol);
}

static inline void find_injector(struct injector *injector) {
    find_function("faults_arm", &injector->arm);
    find_function("faults_disarm", &injector->disarm);
    find_function("faults_pause", &injector->pause);
    find_function("faults_resume", &injector->resume);
    find_function("faults_calls", &injector->calls);
    find_function("faults_injected", &injector->injected);
    find_function("faults_live_blocks", &injector->live);
    find_function("faults_live_of_others", &injector->live_of_others);
    find_function("faults_in_c_library", &injector->in_c_library);
}

/* A locale, or its converters, that could not be loaded for want of memory is missing to the C
 * library from then on, and no caller is told. So both are there before. */
static inline void load_locale(void) {
    wchar_t wide[2];
    locale_t locale = newlocale(LC_ALL_MASK, "", NULL);
    if (locale == NULL) {
        fprintf(stderr, "the locale of the environment is missing\n");
        exit(2);
    }
    uselocale(locale);
    mbstowcs(wide, "a", 2);
    uselocale(LC_GLOBAL_LOCALE);
}

static inline int read_order(FILE *in, struct order *order) {
    return fscanf(in, "%d %ld %d %d", &order->operation, &order->first, &order->forever,
                  &order->error) == 4;
}

static inline void open_descriptors(unsigned char *open_ones) {
    int file;
    for (file = 0; file < MAX_DESCRIPTORS; ++file) {
        open_ones[file] = fcntl(file, F_GETFD) != -1;
    }
}

/* Descriptors that are open now and were not then. */
static inline int count_new_descriptors(const unsigned char *then) {
    unsigned char now[MAX_DESCRIPTORS];
    int file;
    int count = 0;
    open_descriptors(now);
    for (file = 0; file < MAX_DESCRIPTORS; ++file) {
        count += now[file] && !then[file];
    }
    return count;
}

#endif
