# Hardening flags for all optimised builds: static libraries, shared libraries and programs.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)
check_pie_supported()

set(optimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)

# Memory corruption aborts the process instead of being exploitable. Sanitizers check more by themselves, and
# _FORTIFY_SOURCE needs optimisation.
if(NOT QUILLON_SANITIZE)
  add_compile_options(
    $<${optimised}:-fstack-protector-strong> $<${optimised}:-U_FORTIFY_SOURCE> $<${optimised}:-D_FORTIFY_SOURCE=3>)
  # Control-flow integrity, where the processor supports it: checks indirect branch targets and return addresses.
  foreach(flag -fcf-protection=full -mbranch-protection=standard)
    string(MAKE_C_IDENTIFIER QUILLON_HAS${flag} has)
    check_cxx_compiler_flag(${flag} ${has})
    if(${has})
      add_compile_options($<${optimised}:${flag}>)
    endif()
  endforeach()
endif()
add_link_options(-Wl,-z,relro -Wl,-z,now)

# Reproducible builds: the source path is not recorded. Of several matching mappings the last one wins.
add_compile_options(
  $<${optimised}:-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=> $<${optimised}:-ffile-prefix-map=${PROJECT_BINARY_DIR}/=build/>)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
