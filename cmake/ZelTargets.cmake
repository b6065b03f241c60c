# How every target of this project is compiled and linked.

# Warnings, sanitizers and hidden visibility for one target.
function(zel_compile_options target)
  target_compile_features(${target} PRIVATE cxx_std_20)
  set_target_properties(${target} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow)
    if(ZEL_WARNINGS_AS_ERRORS)
      target_compile_options(${target} PRIVATE -Werror)
    endif()
  endif()
  if(ZEL_SANITIZE)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
      # Instrumented code makes g++ 12 find faults of this kind inside its own library (std::regex).
      target_compile_options(${target} PRIVATE -Wno-maybe-uninitialized)
    endif()
    target_compile_options(${target} PRIVATE -fsanitize=${ZEL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${ZEL_SANITIZE})
  endif()
endfunction()

# The compilers' own libraries go into each Windows binary, so that none needs another DLL than the system's.
function(zel_link_runtime_statically target)
  if(MINGW)
    target_link_options(${target} PRIVATE -static)
  endif()
endfunction()

# zel_add_program(NAME source...): a program on the shared library, as a user would link it.
function(zel_add_program name)
  add_executable(${name} ${ARGN})
  zel_compile_options(${name})
  zel_link_runtime_statically(${name})
  target_link_libraries(${name} PRIVATE ZELToolsInfrastructure)
endfunction()
