# What every target of ours is compiled with.
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

# Applies our language level, include path, warnings and sanitizers to a target. Warnings are errors only where somebody
# asks for that, so that a newer compiler breaks neither a package of ours nor an application that builds us along.
function(quillon_target name)
  target_compile_features(${name} PRIVATE cxx_std_23)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  # Nobody replaces a function of ours at load time; without this the compiler keeps calls open for it.
  target_compile_options(${name} PRIVATE -fno-semantic-interposition)
  target_compile_options(${name} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual)
  # GCC mistakes the frame of an Asio coroutine, which is made and freed by functions of its own, for a mismatched pair.
  # GCC follows the members of a std::variant that is moved into alternatives that it does not hold.
  target_compile_options(${name} PRIVATE
    $<$<CXX_COMPILER_ID:GNU>:-Wno-mismatched-new-delete;-Wno-maybe-uninitialized>)
  # So that a linker can leave out what an application never calls.
  target_compile_options(${name} PRIVATE -ffunction-sections -fdata-sections)
  # Files that are read together, to build faster, see each other's names, and GCC 12 sees more of std::string at once
  # than it understands. The release, which reads the libraries one by one, has these warnings.
  if(CMAKE_UNITY_BUILD)
    target_compile_options(${name} PRIVATE -Wno-shadow
      $<$<CXX_COMPILER_ID:GNU>:-Wno-array-bounds;-Wno-stringop-overflow>)
    # The sanitized builds read libraries together, too. GCC takes what a file of theirs keeps to itself for a header's.
    if(QUILLON_SANITIZE)
      target_compile_options(${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
    endif()
  endif()
  if(QUILLON_WERROR)
    target_compile_options(${name} PRIVATE -Werror)
  endif()
  if(QUILLON_SANITIZE)
    target_compile_options(${name} PRIVATE -fsanitize=${QUILLON_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(${name} PUBLIC -fsanitize=${QUILLON_SANITIZE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
      # A program in C that links our library lacks the part of the sanitizer that knows C++.
      target_link_options(${name} PUBLIC -fsanitize-link-c++-runtime)
      target_link_libraries(${name} PUBLIC stdc++)
    endif()
    if(QUILLON_SANITIZE MATCHES thread)
      # The thread sanitizer does not follow fences, by which Asio orders its blocks otherwise.
      target_compile_definitions(${name} PRIVATE BOOST_ASIO_DISABLE_FENCED_BLOCK)
    endif()
  endif()
endfunction()

# A guest takes little room: in release builds the target is compiled for size, which costs nothing that anybody would
# notice, except in the files named, whose speed we promise.
function(quillon_compiled_for_size name)
  target_compile_options(${name} PRIVATE $<$<CONFIG:Release>:-Os>)
  set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS $<$<CONFIG:Release>:-O2>)
endfunction()
