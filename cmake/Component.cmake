# Component libraries. quillon_NAME is a static library with all symbols visible, which our own libraries, tools and
# tests link. Applications link quillon::NAME: the same static library or, with BUILD_SHARED_LIBS, libquillon-NAME, a
# shared library of the same objects that exports only the symbols in exports.map beside the sources.

# The ABI version: before 1.0 every minor version may break binary compatibility.
set(QUILLON_ABI ${PROJECT_VERSION_MAJOR})
if(QUILLON_ABI EQUAL 0)
  set(QUILLON_ABI 0.${PROJECT_VERSION_MINOR})
endif()

# Reduces relative relocations, such as those of vtables, to an eighth of their size.
include(CheckLinkerFlag)
check_linker_flag(CXX -Wl,-z,pack-relative-relocs QUILLON_PACKS_RELOCATIONS)

# Creates quillon::NAME from the static library quillon_NAME and any object libraries after PACKAGE, the package it is
# installed with. The shared library links what the static one links, with other components as shared libraries.
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
      -Wl,-z,nodelete  # the shared instance is never destroyed, so its code must stay loaded
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

# Installs targets and their export file, QuillonConsent-NAME.cmake. Shared libraries go into the given package,
# everything else into the development package.
function(quillon_install name package)
  install(TARGETS ${ARGN} EXPORT QuillonConsent-${name}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${package} NAMELINK_COMPONENT development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
    OBJECTS DESTINATION ${CMAKE_INSTALL_LIBDIR}/quillon-consent COMPONENT development)
  install(EXPORT QuillonConsent-${name} NAMESPACE quillon::
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/QuillonConsent COMPONENT development)
endfunction()
