# 64-bit Windows by clang++, with the C++ library and the runtime of mingw-w64's g++ (posix threads).
include(${CMAKE_CURRENT_LIST_DIR}/windows-x86_64.cmake)
file(GLOB zel_mingw_runtimes LIST_DIRECTORIES true /usr/lib/gcc/x86_64-w64-mingw32/*-posix)
list(GET zel_mingw_runtimes -1 zel_mingw_runtime)
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET x86_64-w64-mingw32)
set(CMAKE_CXX_COMPILER_TARGET x86_64-w64-mingw32)
set(CMAKE_CXX_FLAGS_INIT
  "-isystem ${zel_mingw_runtime}/include/c++ -isystem ${zel_mingw_runtime}/include/c++/x86_64-w64-mingw32")
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-fuse-ld=lld -L${zel_mingw_runtime} -lpthread")
endforeach()
