# fmt compiled with the project, from its sources in FMT_SOURCE: Debian's compiled form is a shared library for
# Linux. The headers are those of Debian's package, in the compiler's include directory.
if(NOT TARGET fmt::fmt)
    if(NOT EXISTS "${FMT_SOURCE}/src/format.cc")
        set(fmt_FOUND FALSE)
        set(fmt_NOT_FOUND_MESSAGE "FMT_SOURCE is not the directory of fmt's sources")
        return()
    endif()
    # fmt::fmt is known only to the directory that looked for it, fmt_parts to all.
    if(NOT TARGET fmt_parts)
        add_library(fmt_parts STATIC EXCLUDE_FROM_ALL "${FMT_SOURCE}/src/format.cc")
        # Its own warnings are not ours.
        target_compile_options(fmt_parts PRIVATE -w)
        if(COMMAND scaler_isp_hardening)
            scaler_isp_hardening(fmt_parts)
        endif()
    endif()
    add_library(fmt::fmt INTERFACE IMPORTED)
    target_link_libraries(fmt::fmt INTERFACE fmt_parts)
    if(NOT APPLE)
        # As Debian's package has it, so that ccache has the objects of the other trees.
        target_compile_definitions(fmt::fmt INTERFACE FMT_SHARED)
    endif()
endif()
