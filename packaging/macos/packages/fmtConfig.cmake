# Headers only; they are in the include directory of the sysroot. The compiled form is a library for Linux.
if(NOT TARGET fmt::fmt)
    add_library(fmt::fmt INTERFACE IMPORTED)
    target_compile_definitions(fmt::fmt INTERFACE FMT_HEADER_ONLY=1)
endif()
