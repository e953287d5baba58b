# Compiler and linker flags: for every target, then the warnings, then what only the libraries get.
# No link-time optimisation and no -Bsymbolic: a program may put its own Asn1Malloc and Asn1Free in
# front, so calls to the pair must stay calls through the dynamic linker.
include_guard()
include(CheckCXXCompilerFlag)

set(TQLABEL_INSTRUMENTED OFF)
if(TQLABEL_SANITIZE)
  set(TQLABEL_INSTRUMENTED ON)
  add_compile_options(-fsanitize=${TQLABEL_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${TQLABEL_SANITIZE})
  add_compile_definitions($<$<COMPILE_LANGUAGE:CXX>:_GLIBCXX_ASSERTIONS>)
endif()
if(TQLABEL_COVERAGE)
  set(TQLABEL_INSTRUMENTED ON)
  add_compile_options(--coverage)
  add_link_options(--coverage)
endif()

add_compile_options(-fstack-protector-strong)
add_link_options(LINKER:-z,relro,-z,now,-z,noexecstack)
check_cxx_compiler_flag(-fcf-protection TQLABEL_HAVE_CF_PROTECTION)
if(TQLABEL_HAVE_CF_PROTECTION)
  add_compile_options(-fcf-protection)
endif()
if(NOT TQLABEL_SANITIZE) # the sanitizers intercept the plain functions, not the checked ones
  add_compile_options($<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE>
                      $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
endif()

add_library(tqlabel_warnings INTERFACE)
target_compile_options(
  tqlabel_warnings
  INTERFACE -Wall
            -Wextra
            -Wpedantic
            -Wconversion
            -Wsign-conversion
            -Wshadow
            -Wcast-qual
            -Wnull-dereference
            -Wundef
            $<$<COMPILE_LANGUAGE:C>:-Wstrict-prototypes>
            $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast>
            $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wuseless-cast>
            $<$<BOOL:${TQLABEL_WERROR}>:-Werror>)

add_library(tqlabel_library_flags INTERFACE)
target_link_libraries(tqlabel_library_flags INTERFACE tqlabel_warnings)
target_compile_options(
  tqlabel_library_flags
  INTERFACE -fvisibility=hidden
            $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions>
            $<$<COMPILE_LANGUAGE:CXX>:-fno-rtti>
            $<$<COMPILE_LANGUAGE:CXX>:-fno-threadsafe-statics>
            $<$<COMPILE_LANGUAGE:CXX>:-fvisibility-inlines-hidden>)

# The libraries run without the C++ runtime; linking against the C library alone makes a stray
# runtime symbol a link error. An instrumented build needs the runtime of its instrumentation.
add_library(tqlabel_link_flags INTERFACE)
target_link_options(tqlabel_link_flags INTERFACE LINKER:--no-undefined-version,--as-needed)
if(NOT TQLABEL_SANITIZE) # clang leaves the sanitizer's symbols to the executable
  target_link_options(tqlabel_link_flags INTERFACE LINKER:--no-undefined)
endif()
if(NOT TQLABEL_INSTRUMENTED)
  target_link_options(tqlabel_link_flags INTERFACE -nodefaultlibs)
  target_link_libraries(tqlabel_link_flags INTERFACE -lc)
endif()
