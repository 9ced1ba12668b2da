# What applications link. Inside the repository quillon_NAME is an archive that hides nothing; our own libraries, tools
# and tests are made of those. quillon::NAME is what an application gets: the archive, or with BUILD_SHARED_LIBS a shared
# library of the same objects, libquillon-NAME, which shows what exports.map beside the sources lists and nothing else.
#
#   quillon_component(NAME
#     ARCHIVES quillon_NAME ...  that of the same name first; those after it belong to several components
#     OBJECTS ...                object libraries that belong to it
#     USES ...                   components that come along with it
#     LINKS ...                  libraries of others
#     PACKAGE ...)               what it is installed with: runtime, qml, webengine or development

# The versions that an application may replace one by the other: before 1.0, a minor version may break what links it.
set(QUILLON_ABI ${PROJECT_VERSION_MAJOR})
if(QUILLON_ABI EQUAL 0)
  set(QUILLON_ABI 0.${PROJECT_VERSION_MINOR})
endif()

# The addresses in tables of functions take an eighth of the room.
include(CheckLinkerFlag)
check_linker_flag(CXX -Wl,-z,pack-relative-relocs QUILLON_PACKS_RELOCATIONS)

function(quillon_component name)
  cmake_parse_arguments(arg "" "PACKAGE" "ARCHIVES;OBJECTS;USES;LINKS" ${ARGN})
  list(GET arg_ARCHIVES 0 archive)
  if(BUILD_SHARED_LIBS)
    set(target ${archive}_shared)
    list(TRANSFORM arg_ARCHIVES REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>" OUTPUT_VARIABLE objects)
    list(TRANSFORM arg_OBJECTS REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>")
    list(TRANSFORM arg_USES REPLACE "(.+)" "quillon_\\1_shared" OUTPUT_VARIABLE uses)
    add_library(${target} SHARED ${objects} ${arg_OBJECTS})
    configure_file(exports.map exports.map @ONLY)
    target_link_libraries(${target} PUBLIC quillon_include ${uses} PRIVATE ${arg_LINKS})
    target_link_options(${target} PRIVATE
      -Wl,--version-script=${CMAKE_CURRENT_BINARY_DIR}/exports.map -Wl,--gc-sections -Wl,-z,now
      -Wl,-z,nodelete)  # the shared instance is never destroyed, nor may its code go
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/exports.map)
    if(QUILLON_PACKS_RELOCATIONS)
      target_link_options(${target} PRIVATE -Wl,-z,pack-relative-relocs)
    endif()
    if(QUILLON_SANITIZE)
      target_link_options(${target} PRIVATE -fsanitize=${QUILLON_SANITIZE})
    else()
      target_link_options(${target} PRIVATE -Wl,--no-undefined)
    endif()
    set_target_properties(${target} PROPERTIES
      LINKER_LANGUAGE CXX VERSION ${PROJECT_VERSION} SOVERSION ${QUILLON_ABI} INSTALL_RPATH $ORIGIN AUTOMOC OFF)
    set(exported ${target})
  else()
    set(target ${archive})
    set(exported ${archive} ${arg_OBJECTS})
  endif()
  add_library(quillon::${name} ALIAS ${target})
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${name})
  set_target_properties(${archive} ${target} PROPERTIES OUTPUT_NAME quillon-${name})
  if(QUILLON_INSTALL)
    quillon_install(${name} ${arg_PACKAGE} ${exported})
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
