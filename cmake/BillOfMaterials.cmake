# Generates the bill of materials of the installed files after linking: see BillOfMaterials.py.
find_package(Python3 COMPONENTS Interpreter QUIET)
find_program(QUILLON_DPKG_QUERY dpkg-query)
if(NOT Python3_FOUND OR NOT QUILLON_DPKG_QUERY OR NOT CMAKE_GENERATOR STREQUAL "Ninja")
  message(STATUS "Without Python, dpkg or Ninja: no bill of materials is written")
  return()
endif()

# Static libraries are not linked; only shared libraries and executables are listed.
set(binaries "")
foreach(target quillon::core quillon::linux quillon::signals quillon::proof quillon::ui quillon::qtquick
    quillon::qtwebengine quillon::testing quillon::c quillon-consent quillon-consent-preview quillon-receiver)
  if(TARGET ${target})
    get_target_property(type ${target} TYPE)
    if(type MATCHES "SHARED|EXECUTABLE")
      list(APPEND binaries $<TARGET_FILE:${target}>)
    endif()
  endif()
endforeach()

set(bill ${PROJECT_BINARY_DIR}/quillon-consent.spdx.json)
add_custom_command(OUTPUT ${bill}
  COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/cmake/BillOfMaterials.py ${PROJECT_BINARY_DIR} ${PROJECT_SOURCE_DIR}
    ${PROJECT_VERSION} ${CMAKE_MAKE_PROGRAM} ${CMAKE_CXX_COMPILER} "${CPACK_DEBIAN_PACKAGE_ARCHITECTURE}"
    ${bill} ${binaries}
  DEPENDS cmake/BillOfMaterials.py ${binaries}
  VERBATIM)
add_custom_target(quillon_bill_of_materials ALL DEPENDS ${bill})
install(FILES ${bill} DESTINATION ${CMAKE_INSTALL_DATADIR}/quillon-consent COMPONENT development)
