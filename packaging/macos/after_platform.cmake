# Read behind CMake's own settings for macOS, which look at the version of the Mac they run on and, where
# there is none, take it for one without run paths.
set(CMAKE_SHARED_LIBRARY_RUNTIME_C_FLAG "-Wl,-rpath,")
set(CMAKE_SHARED_LIBRARY_RUNTIME_CXX_FLAG "-Wl,-rpath,")
