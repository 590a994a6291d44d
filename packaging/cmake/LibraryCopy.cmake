# scaler_isp_copy_library(TARGET DIRECTORY): the target TARGET keeps a copy of the library in DIRECTORY, which
# so becomes a second installation: the library looks for its plug-ins in the directory of its own file. A
# symbolic link would do on Linux, where that is the path by which it was opened, but macOS reports the link's
# target.
function(scaler_isp_copy_library TARGET DIRECTORY)
    set(copy "${DIRECTORY}/libScalerIsp${CMAKE_SHARED_LIBRARY_SUFFIX}")
    add_custom_command(OUTPUT "${copy}"
        COMMAND ${CMAKE_COMMAND} -E rm -f "${copy}" # never writes through a link, nor into a loaded file
        COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:ScalerIsp> "${copy}"
        DEPENDS ScalerIsp VERBATIM)
    add_custom_target(${TARGET} ALL DEPENDS "${copy}")
endfunction()
