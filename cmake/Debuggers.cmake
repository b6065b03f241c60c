# What shows the library's objects in debuggers. gdb runs a script by itself when it opens the library that the script is
# named after: one beside the library, when the user trusts that folder, or one in gdb's own tree. System installations
# use the latter, since the system's own tool for libraries stumbles over files beside them that are none.
install(FILES debuggers/ZELToolsInfrastructure.natvis
  DESTINATION ${CMAKE_INSTALL_DATADIR}/ZELToolsInfrastructure COMPONENT development)

if(NOT WIN32)
  set(zel_gdb_modules debuggers/gdb/zel_memory.py debuggers/gdb/zel_printers.py)
  install(FILES ${zel_gdb_modules}
    DESTINATION ${CMAKE_INSTALL_DATADIR}/ZELToolsInfrastructure/gdb COMPONENT development)

  set(zel_gdb_script libZELToolsInfrastructure.so.${PROJECT_VERSION}-gdb.py)
  if(PROJECT_IS_TOP_LEVEL)
    # For the library in the build folder, which finds the modules among the sources.
    set(zel_gdb_folder ${PROJECT_SOURCE_DIR}/debuggers/gdb)
    configure_file(debuggers/gdb/load.py.in ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${zel_gdb_script} @ONLY)
  endif()

  # The way from the library's folder to the modules, so that an installation may be moved.
  file(RELATIVE_PATH zel_gdb_folder "/prefix/${CMAKE_INSTALL_LIBDIR}"
    "/prefix/${CMAKE_INSTALL_DATADIR}/ZELToolsInfrastructure/gdb")
  configure_file(debuggers/gdb/load.py.in ${CMAKE_CURRENT_BINARY_DIR}/gdb/${zel_gdb_script} @ONLY)
  install(CODE "
    if(CMAKE_INSTALL_PREFIX STREQUAL \"/usr\")
      set(folder /usr/share/gdb/auto-load/usr/${CMAKE_INSTALL_LIBDIR})
    else()
      set(folder \${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR})
    endif()
    file(INSTALL \"${CMAKE_CURRENT_BINARY_DIR}/gdb/${zel_gdb_script}\" DESTINATION \${folder})"
    COMPONENT development)
endif()
