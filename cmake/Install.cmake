# This says what the components "library", "development" and "tool" bring.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

# vig_install(COMPONENT DESTINATION [what install() takes besides]): nothing where nothing is to be installed. Folders that
# are not there yet can be read by all, whatever the user who installs keeps from others.
function(vig_install component destination)
  if(NOT VIG_INSTALL)
    return()
  endif()
  install(CODE "
    set(folder \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${destination}\")
    cmake_path(ABSOLUTE_PATH folder)
    while(NOT EXISTS \"\${folder}\")
      set(parent \"\${folder}\")
      while(NOT EXISTS \"\${parent}\")
        set(highest \"\${parent}\")
        cmake_path(GET highest PARENT_PATH parent)
      endwhile()
      file(MAKE_DIRECTORY \"\${highest}\")
      file(CHMOD \"\${highest}\" PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
    endwhile()" COMPONENT ${component})
  if(ARGN MATCHES "^TARGETS.*EXPORT")
    install(${ARGN} LIBRARY DESTINATION ${destination} COMPONENT ${component} NAMELINK_COMPONENT development)
  else()
    install(${ARGN} DESTINATION ${destination} COMPONENT ${component})
  endif()
endfunction()

foreach(folder BINDIR LIBDIR INCLUDEDIR)
  if(VIG_INSTALL AND IS_ABSOLUTE "${CMAKE_INSTALL_${folder}}")
    message(FATAL_ERROR "CMAKE_INSTALL_${folder} must be relative to the prefix, which can be moved.")
  endif()
endforeach()
file(RELATIVE_PATH VIG_LIBDIR_FROM_BINDIR "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
# Files by which a client finds the library say where it is as seen from themselves, so that the prefix can be moved.
file(RELATIVE_PATH VIG_PREFIX_FROM_PC "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")

# vig_install_library(TARGET NAME): the library, and NAME.pc for clients without CMake.
function(vig_install_library target name)
  vig_install(library ${CMAKE_INSTALL_LIBDIR} TARGETS ${target} EXPORT vig)
  configure_file(${name}.pc.in ${name}.pc @ONLY)
  vig_install(development ${CMAKE_INSTALL_LIBDIR}/pkgconfig FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc)
endfunction()

# The package needs no other: what the library itself is linked with is no concern of its clients.
vig_install(development ${CMAKE_INSTALL_LIBDIR}/cmake/vig EXPORT vig NAMESPACE vig:: FILE vigConfig.cmake)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/vigConfigVersion.cmake COMPATIBILITY SameMajorVersion)
vig_install(development ${CMAKE_INSTALL_LIBDIR}/cmake/vig FILES ${PROJECT_BINARY_DIR}/vigConfigVersion.cmake)
