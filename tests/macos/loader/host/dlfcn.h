/* Stands in front of the system's dlfcn.h: the libraries of a host that is compiled with it come
 * through the Mach-O loader. */
#ifndef SCALER_ISP_TESTS_MACOS_HOST_DLFCN_H
#define SCALER_ISP_TESTS_MACOS_HOST_DLFCN_H

#include_next <dlfcn.h>

#include "loader.h"

#undef RTLD_NOLOAD
#define RTLD_NOLOAD MACHO_RTLD_NOLOAD
#define dlopen macho_dlopen
#define dlsym macho_dlsym
#define dlclose macho_dlclose
#define dlerror macho_dlerror

#endif
