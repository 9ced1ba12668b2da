# Installs what is not a component: headers, the CMake package and pkg-config files.
include(CMakePackageConfigHelpers)

install(DIRECTORY include/quillon DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/QuillonConsent)
set_target_properties(quillon_include PROPERTIES EXPORT_NAME include)
set_target_properties(quillon_platform PROPERTIES EXPORT_NAME platform)
install(TARGETS quillon_include quillon_platform EXPORT QuillonConsent-include)
install(EXPORT QuillonConsent-include NAMESPACE quillon:: DESTINATION ${package_folder} COMPONENT development)
configure_package_config_file(cmake/QuillonConsentConfig.cmake.in QuillonConsentConfig.cmake
  INSTALL_DESTINATION ${package_folder} NO_SET_AND_CHECK_MACRO)
if(PROJECT_VERSION_MAJOR EQUAL 0)
  set(compatibility SameMinorVersion)
else()
  set(compatibility SameMajorVersion)
endif()
write_basic_package_version_file(QuillonConsentConfigVersion.cmake COMPATIBILITY ${compatibility})
install(FILES
  ${PROJECT_BINARY_DIR}/QuillonConsentConfig.cmake ${PROJECT_BINARY_DIR}/QuillonConsentConfigVersion.cmake
  DESTINATION ${package_folder} COMPONENT development)

# For builds without CMake. Static libraries need their dependencies listed; shared ones record them.
file(RELATIVE_PATH PKGCONFIG_UP /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
function(quillon_pkgconfig name description libraries archives requires)
  set(PKGCONFIG_NAME ${name})
  set(PKGCONFIG_DESCRIPTION ${description})
  string(REPLACE ";" " " PKGCONFIG_LIBRARIES "${libraries}")
  set(PKGCONFIG_REQUIRES "")
  if(NOT BUILD_SHARED_LIBS)
    string(REPLACE ";" " " PKGCONFIG_LIBRARIES "${libraries};${archives}")
    string(REPLACE ";" " " PKGCONFIG_REQUIRES "${requires}")
  endif()
  configure_file(cmake/quillon.pc.in ${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endfunction()

set(needs sqlite3 libcurl gio-2.0)
set(core_archives -lquillon-parts -lnettle -lboost_json -lboost_url -lz -pthread)
quillon_pkgconfig(quillon-consent "Consent management for applications"
  "-lquillon-linux;-lquillon-core" "-lquillon-bus;${core_archives}" "${needs}")
quillon_pkgconfig(quillon-consent-c "Consent management for applications, C interface" "-lquillon-consent-c" "" "")
quillon_pkgconfig(quillon-consent-testing "A device in memory, for tests of an application's consent flow"
  "-lquillon-testing;-lquillon-core" "-lquillon-memory;${core_archives}" "")
quillon_pkgconfig(quillon-consent-signals "Consent management for applications, strings of the advertising trade"
  "-lquillon-signals;-lquillon-core" "${core_archives}" "")
set(forced -Wl,-u,quillonReceiptIssuer -lquillon-proof)
if(BUILD_SHARED_LIBS)
  set(forced -Wl,--push-state,--no-as-needed -lquillon-proof -Wl,--pop-state)
endif()
quillon_pkgconfig(quillon-consent-proof "Consent management for applications, receipts"
  "${forced};-lquillon-linux;-lquillon-core" "-lquillon-bus;${core_archives}" "${needs};hogweed")
# Static screens include object libraries, which pkg-config cannot express.
if(TARGET quillon_qtquick AND BUILD_SHARED_LIBS)
  quillon_pkgconfig(quillon-consent-qtquick "Consent management for applications, screens for Qt Quick"
    "-lquillon-qtquick;-lquillon-linux;-lquillon-core" "" "")
  if(TARGET quillon_qtwebengine)
    quillon_pkgconfig(quillon-consent-qtwebengine "Consent management for applications, in-app web view for Qt Quick"
      "-lquillon-qtwebengine;-lquillon-qtquick;-lquillon-linux;-lquillon-core" "" "")
  endif()
endif()
