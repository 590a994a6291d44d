# Records which parts are built or left out, and why; printed at the end of the configuration.

# scaler_isp_find(PART RESULT PACKAGE ARGS...): looks for a package that a part needs. Sets RESULT to
# TRUE or FALSE; if the part is ON, a missing package stops the configuration.
function(scaler_isp_find PART RESULT PACKAGE)
    if(SCALER_ISP_${PART} STREQUAL "ON")
        find_package(${PACKAGE} ${ARGN} REQUIRED)
    else()
        find_package(${PACKAGE} ${ARGN} QUIET)
    endif()
    if(${PACKAGE}_FOUND)
        set(${RESULT} TRUE PARENT_SCOPE)
    else()
        set(${RESULT} FALSE PARENT_SCOPE)
    endif()
endfunction()

# scaler_isp_note(TEXT): adds one line to the report.
function(scaler_isp_note TEXT)
    set_property(GLOBAL APPEND PROPERTY SCALER_ISP_NOTES "${TEXT}")
endfunction()

function(scaler_isp_report_parts)
    foreach(part IN LISTS SCALER_ISP_PARTS)
        if(SCALER_ISP_${part} STREQUAL "OFF")
            scaler_isp_note("${part}: left out (SCALER_ISP_${part}=OFF)")
        endif()
    endforeach()
    get_property(notes GLOBAL PROPERTY SCALER_ISP_NOTES)
    foreach(note IN LISTS notes)
        message(STATUS "ScalerIsp: ${note}")
    endforeach()
endfunction()
