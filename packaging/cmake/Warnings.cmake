# The warnings for the targets of this project. They are errors only with SCALER_ISP_WERROR, so that a
# compiler that we do not test never stops a user's build.
function(scaler_isp_warnings TARGET)
    target_compile_options(${TARGET} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wcast-qual -Wformat=2
        -Wundef -Wvla
        $<$<COMPILE_LANGUAGE:CXX>:-Woverloaded-virtual -Wnon-virtual-dtor -Wextra-semi>
        $<$<BOOL:${SCALER_ISP_WERROR}>:-Werror>)
    # g++ 12 wrongly reports overlapping copies for every `"text" + std::string` it inlines; 13 no longer does.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        target_compile_options(${TARGET} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
    endif()
endfunction()
