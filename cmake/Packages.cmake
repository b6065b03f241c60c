# The packages that cpack makes of a build: on Linux a runtime and a development package for Debian and one archive of
# both, for Windows an archive. `cpack --preset linux` and `cpack --preset windows` leave them in build/packages.
string(TOLOWER ${PROJECT_NAME} zel_package)

set(CPACK_PACKAGE_NAME ${zel_package})
set(CPACK_PACKAGE_VENDOR "${PROJECT_NAME} developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "services for tools that build, test and install software")
set(CPACK_PACKAGE_DESCRIPTION "${PROJECT_DESCRIPTION}: strings, collections, maps, file names, text and patterns, \
processes, threads and locks, sockets, a small object model, counters and identifiers.")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_SOURCE_DIR}/build/packages)
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_COMPONENTS_ALL runtime development)

# Both components in one archive, whose top folder tells what it is.
set(CPACK_ARCHIVE_COMPONENT_INSTALL OFF)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_SYSTEM_NAME windows-x86_64)
else()
  set(CPACK_GENERATOR DEB TGZ)
  set(CPACK_SYSTEM_NAME linux-x86_64)
endif()

# The name of the runtime package tells the interface that programs were linked with.
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${PROJECT_NAME} developers <developers@${zel_package}.invalid>")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME lib${zel_package}${ZEL_ABI_VERSION})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME lib${zel_package}-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "lib${zel_package}${ZEL_ABI_VERSION} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "gdb, pkgconf")

include(CPack)
cpack_add_component(runtime DESCRIPTION "The shared library, and the look of HTML reports." REQUIRED)
cpack_add_component(development DEPENDS runtime
  DESCRIPTION "The headers, what CMake and pkg-config need, documentation, and views for debuggers.")
