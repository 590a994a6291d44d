# What makes mistakes in memory harder to exploit, for everything that is delivered: the library, ispctl, the
# plug-ins of the virtual scaler and the probe of the self-test. Tests do without.
# tests/package/check_hardening.py reads it from the built files; docs/security.md says what it is for.
#
# Hosts notice nothing of it. Therefore the assertions of the standard library are not part of it: they end
# the host's process where the library goes on.

# A project that includes this one decides about its own flags.
option(SCALER_ISP_HARDENING "Harden what is delivered against mistakes in memory" ${PROJECT_IS_TOP_LEVEL})
# macOS has its own, without being asked: canaries, checked sizes, read-only tables, programs at random
# addresses. More canaries would make each half of the library larger than its goal (bench/RESULTS.md).
if(APPLE OR NOT SCALER_ISP_HARDENING)
    function(scaler_isp_hardening)
    endfunction()
    return()
endif()

include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)
include(CheckPIESupported)
# Otherwise CMake would not link a program with -pie.
check_pie_supported(OUTPUT_VARIABLE ignored LANGUAGES CXX)

check_cxx_compiler_flag(-fstack-protector-strong SCALER_ISP_HAS_STACK_PROTECTOR)
# Each processor protects return addresses in its own way; clang accepts the flags of the others, too.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|amd64|AMD64|i.86)$")
    # Shadow stacks. No Linux tracks indirect jumps of programs, whose marks would cost a hundredth of the file.
    # Start files of some systems do not say that they allow shadow stacks, hence the linker's word.
    check_cxx_compiler_flag(-fcf-protection=return SCALER_ISP_HAS_CF_PROTECTION)
    check_linker_flag(CXX LINKER:-z,shstk SCALER_ISP_HAS_SHADOW_STACK)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)$")
    # Signed return addresses, and landing pads.
    check_cxx_compiler_flag(-mbranch-protection=standard SCALER_ISP_HAS_BRANCH_PROTECTION)
endif()
check_linker_flag(CXX LINKER:-z,relro,-z,now,-z,noexecstack SCALER_ISP_HAS_RELRO)

# glibc checks sizes only in optimised code, and warns of any other.
set(scaler_isp_optimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
set(scaler_isp_hardened_code
    $<$<BOOL:${SCALER_ISP_HAS_STACK_PROTECTOR}>:-fstack-protector-strong>
    $<$<BOOL:${SCALER_ISP_HAS_CF_PROTECTION}>:-fcf-protection=return>
    $<$<BOOL:${SCALER_ISP_HAS_BRANCH_PROTECTION}>:-mbranch-protection=standard>
    $<${scaler_isp_optimised}:-U_FORTIFY_SOURCE>
    $<${scaler_isp_optimised}:-D_FORTIFY_SOURCE=2>)
# All functions of other libraries are looked up when the file is loaded; then their table is read-only.
set(scaler_isp_hardened_link $<$<BOOL:${SCALER_ISP_HAS_RELRO}>:LINKER:-z,relro,-z,now,-z,noexecstack>)
if(SCALER_ISP_HAS_CF_PROTECTION AND SCALER_ISP_HAS_SHADOW_STACK)
    list(APPEND scaler_isp_hardened_link LINKER:-z,shstk)
endif()

# scaler_isp_hardening(TARGETS...): hardens targets, as far as compiler and linker can.
function(scaler_isp_hardening)
    foreach(target IN LISTS ARGN)
        target_compile_options(${target} PRIVATE ${scaler_isp_hardened_code})
        get_target_property(type ${target} TYPE)
        if(NOT type MATCHES "^(OBJECT|STATIC)_LIBRARY$")
            target_link_options(${target} PRIVATE ${scaler_isp_hardened_link})
        endif()
        # A program at a random address consists of such parts, whatever is the compiler's default.
        if(type MATCHES "^(EXECUTABLE|STATIC_LIBRARY)$")
            set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
        endif()
    endforeach()
endfunction()
