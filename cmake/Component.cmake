# What applications link. Inside the repository quillon_NAME is an archive that hides nothing; our own libraries, tools
# and tests are made of those. quillon::NAME is what an application gets: the archive, or with BUILD_SHARED_LIBS a shared
# library of the same objects, libquillon-NAME, which shows what exports.map beside the sources lists and nothing else.

# The versions that an application may replace one by the other: before 1.0, a minor version may break what links it.
set(QUILLON_ABI ${PROJECT_VERSION_MAJOR})
if(QUILLON_ABI EQUAL 0)
  set(QUILLON_ABI 0.${PROJECT_VERSION_MINOR})
endif()

# The addresses in tables of functions take an eighth of the room.
include(CheckLinkerFlag)
check_linker_flag(CXX -Wl,-z,pack-relative-relocs QUILLON_PACKS_RELOCATIONS)

# Makes quillon::NAME of the archive quillon_NAME and of the object libraries that follow PACKAGE, the package that it is
# installed with. The shared library links what the archive links, but other components as shared libraries.
function(quillon_component name package)
  set(target quillon_${name})
  if(BUILD_SHARED_LIBS)
    get_target_property(libraries ${target} LINK_LIBRARIES)
    set(components ${libraries})
    list(FILTER components INCLUDE REGEX "^quillon_(core|linux|ui|qtquick)$")
    list(REMOVE_ITEM libraries ${components} quillon_include)
    list(TRANSFORM components APPEND _shared)
    list(TRANSFORM ARGN REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>" OUTPUT_VARIABLE objects)
    set(target ${target}_shared)
    add_library(${target} SHARED $<TARGET_OBJECTS:quillon_${name}> ${objects})
    target_link_libraries(${target} PUBLIC quillon_include ${components} PRIVATE ${libraries})
    configure_file(exports.map exports.map @ONLY)
    target_link_options(${target} PRIVATE
      -Wl,--version-script=${CMAKE_CURRENT_BINARY_DIR}/exports.map -Wl,--gc-sections
      -Wl,-z,nodelete  # the shared instance is never destroyed, nor may its code go
      $<$<BOOL:${QUILLON_PACKS_RELOCATIONS}>:-Wl,-z,pack-relative-relocs>
      $<$<BOOL:${QUILLON_SANITIZE}>:-fsanitize=${QUILLON_SANITIZE}>
      $<$<NOT:$<BOOL:${QUILLON_SANITIZE}>>:-Wl,--no-undefined>)
    set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX AUTOMOC OFF
      VERSION ${PROJECT_VERSION} SOVERSION ${QUILLON_ABI} INSTALL_RPATH $ORIGIN
      LINK_DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/exports.map)
    set(ARGN "")
  endif()
  add_library(quillon::${name} ALIAS ${target})
  set_target_properties(quillon_${name} ${target} PROPERTIES OUTPUT_NAME quillon-${name} EXPORT_NAME ${name})
  if(QUILLON_INSTALL)
    quillon_install(${name} ${package} ${target} ${ARGN})
  endif()
endfunction()

# Installs targets with the file that tells CMake about them, QuillonConsent-NAME.cmake; their shared libraries go into
# the package given, everything else into that for development.
function(quillon_install name package)
  install(TARGETS ${ARGN} EXPORT QuillonConsent-${name}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${package} NAMELINK_COMPONENT development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
    OBJECTS DESTINATION ${CMAKE_INSTALL_LIBDIR}/quillon-consent COMPONENT development)
  install(EXPORT QuillonConsent-${name} NAMESPACE quillon::
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/QuillonConsent COMPONENT development)
endfunction()
