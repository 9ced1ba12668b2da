# What is installed beside the components: headers, the CMake package, pkg-config files, and Debian packages of it all.
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

# For those who build without CMake. An archive brings what it needs along, a shared library knows it by itself.
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
# Of archives, the screens are also objects, which CMake alone hands on.
if(TARGET quillon_qtquick AND BUILD_SHARED_LIBS)
  quillon_pkgconfig(quillon-consent-qtquick "Consent management for applications, screens for Qt Quick"
    "-lquillon-qtquick;-lquillon-linux;-lquillon-core" "" "")
  if(TARGET quillon_qtwebengine)
    quillon_pkgconfig(quillon-consent-qtwebengine "Consent management for applications, in-app web view for Qt Quick"
      "-lquillon-qtwebengine;-lquillon-qtquick;-lquillon-linux;-lquillon-core" "" "")
  endif()
endif()

# Debian packages: `cpack -G DEB` in the build folder of a shared build.
set(CPACK_PACKAGE_NAME quillon-consent)
set(CPACK_PACKAGE_VENDOR "Quillon")
set(CPACK_PACKAGE_CONTACT "Quillon consent SDK maintainers <maintainers@quillon.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Consent management for applications")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_GENERATOR DEB)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The libraries of the packages beside one another.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  ${PROJECT_BINARY_DIR}/core ${PROJECT_BINARY_DIR}/platform/linux ${PROJECT_BINARY_DIR}/signals ${PROJECT_BINARY_DIR}/proof
  ${PROJECT_BINARY_DIR}/ui ${PROJECT_BINARY_DIR}/ui/qtquick)
set(CPACK_COMPONENTS_ALL runtime development tools)
set(runtime "libquillon-consent${QUILLON_ABI}")
set(exactly "(= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "Consent management for applications: libraries")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libquillon-consent-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${runtime} ${exactly}")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "Consent management for applications: headers, test kit, build files")
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME quillon-consent-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "Consent management for applications: development server and checks")
if(PostgreSQL_FOUND)
  list(APPEND CPACK_COMPONENTS_ALL receiver)
  set(CPACK_DEBIAN_RECEIVER_PACKAGE_NAME quillon-receiver)
  set(CPACK_DEBIAN_RECEIVER_PACKAGE_SECTION net)
  set(CPACK_DEBIAN_RECEIVER_PACKAGE_RECOMMENDS "nginx-light | nginx")
  set(CPACK_DEBIAN_RECEIVER_PACKAGE_SUGGESTS "postgresql")
  set(CPACK_DEBIAN_RECEIVER_DESCRIPTION "Consent management for applications: receiver of uploads")
endif()
if(TARGET quillon_qtquick)
  list(APPEND CPACK_COMPONENTS_ALL qml preview)
  string(JOIN ", " qml_modules qml6-module-qtquick qml6-module-qtquick-templates qml6-module-qtquick-window
    qml6-module-qtqml qml6-module-qtqml-models qml6-module-qtqml-workerscript)
  set(CPACK_DEBIAN_QML_PACKAGE_NAME qml6-module-quillon-consent)
  set(CPACK_DEBIAN_QML_PACKAGE_DEPENDS "${runtime} ${exactly}, ${qml_modules}")
  set(CPACK_DEBIAN_PREVIEW_PACKAGE_NAME quillon-consent-preview)
  set(CPACK_DEBIAN_PREVIEW_PACKAGE_SECTION devel)
  set(CPACK_DEBIAN_PREVIEW_PACKAGE_DEPENDS "quillon-consent-tools ${exactly}, ${qml_modules}")
  set(CPACK_DEBIAN_PREVIEW_DESCRIPTION "Consent management for applications: preview of the screens")
  set(CPACK_DEBIAN_QML_DESCRIPTION "Consent management for applications: screens for Qt Quick")
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS "qml6-module-quillon-consent ${exactly}")
endif()
if(TARGET quillon_qtwebengine)
  list(APPEND CPACK_COMPONENTS_ALL webengine)
  set(CPACK_DEBIAN_WEBENGINE_PACKAGE_NAME qml6-module-quillon-consent-webengine)
  set(CPACK_DEBIAN_WEBENGINE_PACKAGE_DEPENDS
    "qml6-module-quillon-consent ${exactly}, qml6-module-qtwebengine, libqt6webenginecore6-bin")
  set(CPACK_DEBIAN_WEBENGINE_DESCRIPTION "Consent management for applications: in-app web view for Qt Quick")
endif()
include(CPack)
