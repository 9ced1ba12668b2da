# Debian packages of the installed files: `cpack -G DEB` in the build folder of a shared build, with umask 022, since
# the packaged folders keep the umask's permissions.
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
# Dependents require the package version that they were linked with, or a later one of the same ABI.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Where dpkg-shlibdeps finds the packages' own libraries.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  ${PROJECT_BINARY_DIR}/core ${PROJECT_BINARY_DIR}/platform/linux ${PROJECT_BINARY_DIR}/signals ${PROJECT_BINARY_DIR}/proof
  ${PROJECT_BINARY_DIR}/ui ${PROJECT_BINARY_DIR}/ui/qtquick)
if(CPACK_DEBIAN_PACKAGE_ARCHITECTURE)
  # Of another processor than this machine's: dpkg-shlibdeps looks for its libraries and reads them with its tools.
  set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_BINARY_DIR}/debian/architecture.cmake)
  file(WRITE ${CPACK_PROJECT_CONFIG_FILE} "set(ENV{DEB_HOST_ARCH} ${CPACK_DEBIAN_PACKAGE_ARCHITECTURE})\n")
endif()
set(CPACK_COMPONENTS_ALL "")

# A change log in Debian's format; the full one is CHANGELOG.md.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(cmake/debian/changelog.in debian/changelog @ONLY)
quillon_compressed(${PROJECT_BINARY_DIR}/debian/changelog ${PROJECT_BINARY_DIR}/debian/changelog.gz)
quillon_compressed(${PROJECT_SOURCE_DIR}/CHANGELOG.md ${PROJECT_BINARY_DIR}/debian/CHANGELOG.md.gz)

# Makes a package from the install component COMPONENT. Further settings follow as pairs, such as DEPENDS "libc6". A
# package with libraries triggers ldconfig.
macro(quillon_debian_package component name section summary description)
  string(TOUPPER ${component} key)
  list(APPEND CPACK_COMPONENTS_ALL ${component})
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${key}_DESCRIPTION "${summary}\n${description}")
  if("${name}" MATCHES "^(lib|qml)")
    set(CPACK_DEBIAN_${key}_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/triggers)
  endif()
  set(settings ${ARGN})
  while(settings)
    list(POP_FRONT settings setting value)
    set(CPACK_DEBIAN_${key}_PACKAGE_${setting} "${value}")
  endwhile()
  install(FILES cmake/debian/copyright ${PROJECT_BINARY_DIR}/debian/changelog.gz ${PROJECT_BINARY_DIR}/debian/CHANGELOG.md.gz
    DESTINATION share/doc/${name} COMPONENT ${component} EXCLUDE_FROM_ALL)
endmacro()

set(runtime "libquillon-consent${QUILLON_ABI}")
set(exactly "(= ${PROJECT_VERSION})")
string(JOIN ", " qml_modules qml6-module-qtquick qml6-module-qtquick-templates qml6-module-qtquick-window
  qml6-module-qtqml qml6-module-qtqml-models qml6-module-qtqml-workerscript)
quillon_debian_package(runtime ${runtime} libs "Libraries."
  "Asks the users of an application for consent, keeps their answers and hands
them on, as a configuration downloaded from a server says.")
quillon_debian_package(development libquillon-consent-dev libdevel "Development files."
  "Headers, the test kit, and what CMake and pkg-config need to build
applications that ask their users for consent."
  DEPENDS "${runtime} ${exactly}")
quillon_debian_package(tools quillon-consent-tools devel "Tools for developers."
  "A development server, checks of configurations and servers, a workbench in
the browser, and a reader of stores.")
if(PostgreSQL_FOUND)
  quillon_debian_package(receiver quillon-receiver net "Receiver of uploads."
    "Takes what applications upload when their users have decided, and keeps it
in PostgreSQL or SQLite."
    RECOMMENDS "nginx-light | nginx" SUGGESTS postgresql)
endif()
if(TARGET quillon_qtquick)
  quillon_debian_package(qml qml6-module-quillon-consent libs "Screens for Qt Quick."
    "The banner, the preference centre and the prompts as a QML module, and the
library behind it."
    DEPENDS "${runtime} ${exactly}, ${qml_modules}")
  quillon_debian_package(preview quillon-consent-preview devel "Preview of the screens."
    "Shows the screens of a configuration, or writes their pictures."
    DEPENDS "quillon-consent-tools ${exactly}, ${qml_modules}")
  set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS "qml6-module-quillon-consent ${exactly}")
endif()
if(TARGET quillon_qtwebengine)
  quillon_debian_package(webengine qml6-module-quillon-consent-webengine libs "In-app web view for Qt Quick."
    "Shows the links of the screens in a web view that reaches allowed hosts only."
    DEPENDS "qml6-module-quillon-consent ${exactly}, qml6-module-qtwebengine, libqt6webenginecore6-bin")
endif()
include(CPack)
