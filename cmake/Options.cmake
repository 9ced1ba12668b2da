# Options, and the compiler settings of all our targets.
option(QUILLON_TESTS "Build the tests" ${PROJECT_IS_TOP_LEVEL})
option(QUILLON_FUZZ "Build the fuzzers: with Clang, and QUILLON_SANITIZE holding fuzzer-no-link" OFF)
set(QUILLON_QTQUICK "AUTO" CACHE STRING "Build the screens for Qt Quick: ON, OFF, or AUTO, when Qt is found")
set_property(CACHE QUILLON_QTQUICK PROPERTY STRINGS AUTO ON OFF)
if(QUILLON_QTQUICK STREQUAL "AUTO")
  set(QUILLON_QTQUICK_NEED QUIET)
else()
  set(QUILLON_QTQUICK_NEED REQUIRED)
endif()
set(QUILLON_RECEIVER "AUTO" CACHE STRING "Build the receiver of uploads: ON, OFF, or AUTO, when libpq is found")
set_property(CACHE QUILLON_RECEIVER PROPERTY STRINGS AUTO ON OFF)
if(QUILLON_RECEIVER STREQUAL "AUTO")
  set(QUILLON_RECEIVER_NEED QUIET)
else()
  set(QUILLON_RECEIVER_NEED REQUIRED)
endif()
set(QUILLON_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize takes them (address,undefined or thread)")
option(QUILLON_WERROR "Make warnings errors, as our presets do" OFF)
option(QUILLON_INSTALL "Install the SDK along with what builds it" ${PROJECT_IS_TOP_LEVEL})

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# Applies our language level, include path, warnings and sanitizers. Warnings are errors only on request, so that a
# newer compiler does not break packages or applications that build the SDK.
function(quillon_target name)
  target_compile_features(${name} PRIVATE cxx_std_23)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  # Our functions are never interposed; without this the compiler cannot inline calls between them.
  target_compile_options(${name} PRIVATE -fno-semantic-interposition)
  target_compile_options(${name} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual)
  # GCC false positives: a mismatched delete for frames of Asio coroutines, which have their own operator new and
  # delete, and uninitialised members of inactive alternatives when a std::variant is moved.
  target_compile_options(${name} PRIVATE
    $<$<CXX_COMPILER_ID:GNU>:-Wno-mismatched-new-delete;-Wno-maybe-uninitialized>)
  # Allows the linker to remove unused functions.
  target_compile_options(${name} PRIVATE -ffunction-sections -fdata-sections)
  # Our presets use unity builds, which take half the time; only the one for the fuzzers builds libraries file by file,
  # which detects missing includes. In a unity build files see each other's names, and GCC 12 reports false positives in
  # std::string and mistakes a file's local types for a header's.
  if(CMAKE_UNITY_BUILD)
    target_compile_options(${name} PRIVATE -Wno-shadow
      $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local;-Wno-array-bounds;-Wno-stringop-overflow;-Wno-subobject-linkage>)
  endif()
  if(QUILLON_WERROR)
    target_compile_options(${name} PRIVATE -Werror)
  endif()
  if(QUILLON_SANITIZE)
    target_compile_options(${name} PRIVATE -fsanitize=${QUILLON_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(${name} PUBLIC -fsanitize=${QUILLON_SANITIZE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
      # A C program that links our library lacks the sanitizer's C++ runtime.
      target_link_options(${name} PUBLIC -fsanitize-link-c++-runtime)
      target_link_libraries(${name} PUBLIC stdc++)
    endif()
    if(QUILLON_SANITIZE MATCHES thread)
      # The thread sanitizer does not support fences, which Asio otherwise uses for its fenced blocks.
      target_compile_definitions(${name} PRIVATE BOOST_ASIO_DISABLE_FENCED_BLOCK)
    endif()
  endif()
endfunction()

# Release builds are optimised for size, to add little to an application; the cost is negligible except in the named
# files, whose performance is promised.
function(quillon_compiled_for_size name)
  target_compile_options(${name} PRIVATE $<$<CONFIG:Release>:-Os>)
  set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS $<$<CONFIG:Release>:-O2>)
endfunction()
