# Read after CMake's own settings for macOS. Those test the version of the build machine's macOS and, if it
# has none, assume a version without run paths.
set(CMAKE_SHARED_LIBRARY_RUNTIME_C_FLAG "-Wl,-rpath,")
set(CMAKE_SHARED_LIBRARY_RUNTIME_CXX_FLAG "-Wl,-rpath,")
