# What an installed copy consists of: the library, its headers, documentation, a CMake package and a pkg-config file.
# The last two find their files relative to themselves, so the installed folder may be moved.
include(CMakePackageConfigHelpers)

set(zel_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ZELToolsInfrastructure)

install(TARGETS ZELToolsInfrastructure EXPORT ZELToolsInfrastructureTargets
  RUNTIME COMPONENT runtime
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development
  FILE_SET HEADERS COMPONENT development)
install(EXPORT ZELToolsInfrastructureTargets NAMESPACE ZELToolsInfrastructure::
  DESTINATION ${zel_package_dir} COMPONENT development)

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/ZELToolsInfrastructureConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/ZELToolsInfrastructureConfig.cmake INSTALL_DESTINATION ${zel_package_dir})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/ZELToolsInfrastructureConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/ZELToolsInfrastructureConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/ZELToolsInfrastructureConfigVersion.cmake
  DESTINATION ${zel_package_dir} COMPONENT development)

# ${pcfiledir} is where pkg-config found the file; from there the prefix is as many steps up as the path has parts.
file(RELATIVE_PATH zel_prefix_from_pc "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
string(REGEX REPLACE "/$" "" zel_prefix_from_pc "${zel_prefix_from_pc}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/ZELToolsInfrastructure.pc.in
  ${CMAKE_CURRENT_BINARY_DIR}/ZELToolsInfrastructure.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/ZELToolsInfrastructure.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

# The look of HTML reports; share/ZELToolsInfrastructure is a root for CopyDefaultHtmlStyle then.
install(DIRECTORY resources DESTINATION ${CMAKE_INSTALL_DATADIR}/ZELToolsInfrastructure COMPONENT runtime)

set(zel_doc_dir ${CMAKE_INSTALL_DATAROOTDIR}/doc/ZELToolsInfrastructure)
install(FILES README.md CHANGELOG.md CONTRIBUTING.md SECURITY.md DESTINATION ${zel_doc_dir} COMPONENT development)
install(DIRECTORY docs DESTINATION ${zel_doc_dir} COMPONENT development PATTERN Doxyfile EXCLUDE)
