# The warnings of this house for its own targets. They are errors only with SCALER_ISP_WERROR, so that
# a stranger's compiler never stops a build.
function(scaler_isp_warnings TARGET)
    target_compile_options(${TARGET} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wcast-qual -Wformat=2
        -Wundef -Wvla
        $<$<COMPILE_LANGUAGE:CXX>:-Woverloaded-virtual -Wnon-virtual-dtor -Wextra-semi>
        $<$<BOOL:${SCALER_ISP_WERROR}>:-Werror>)
    # g++ 12 sees overlapping copies in every `"text" + std::string` it inlines; 13 no longer does.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        target_compile_options(${TARGET} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
    endif()
endfunction()
