# How optimised builds of ours are compiled and linked, archives, shared libraries and programs alike.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)
check_pie_supported()

set(optimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)

# A fault that overwrites memory ends the process instead of taking it over. Sanitized builds look closer by themselves,
# and the checks of the C library need an optimiser.
if(NOT QUILLON_SANITIZE)
  add_compile_options(
    $<${optimised}:-fstack-protector-strong> $<${optimised}:-U_FORTIFY_SOURCE> $<${optimised}:-D_FORTIFY_SOURCE=3>)
  # Where the processor has it: calls and jumps by address arrive at marked places only, and returns where they came from.
  foreach(flag -fcf-protection=full -mbranch-protection=standard)
    string(MAKE_C_IDENTIFIER QUILLON_HAS${flag} has)
    check_cxx_compiler_flag(${flag} ${has})
    if(${has})
      add_compile_options($<${optimised}:${flag}>)
    endif()
  endforeach()
endif()
add_link_options(-Wl,-z,relro -Wl,-z,now)

# Nothing tells where it was built: two builds in different folders are equal byte for byte. The later mapping goes first.
add_compile_options(
  $<${optimised}:-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=> $<${optimised}:-ffile-prefix-map=${PROJECT_BINARY_DIR}/=build/>)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
