# The warnings of this house for its own targets. They are errors only with SCALER_ISP_WERROR, so that
# a stranger's compiler never stops a build.
function(scaler_isp_warnings TARGET)
    target_compile_options(${TARGET} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wcast-qual -Wformat=2
        -Wundef -Wvla
        $<$<COMPILE_LANGUAGE:CXX>:-Woverloaded-virtual -Wnon-virtual-dtor -Wextra-semi>
        $<$<BOOL:${SCALER_ISP_WERROR}>:-Werror>)
endfunction()
