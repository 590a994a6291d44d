# Headers only; they are in the include directory of the sysroot.
if(NOT TARGET CLI11::CLI11)
    add_library(CLI11::CLI11 INTERFACE IMPORTED)
endif()
