# cmake -DCOMPILER=... -DROOT=... -DSOURCE=... -P CompileFail.cmake
# SOURCE must compile with GOOD defined. Without it, it must not, and the compiler must say the text
# that SOURCE gives in a line "// expect: TEXT": any other error would prove nothing.
cmake_minimum_required(VERSION 3.25)

file(STRINGS ${SOURCE} expectation REGEX "^// expect: ." LIMIT_COUNT 1)
if(NOT expectation)
  message(FATAL_ERROR "${SOURCE}: no line '// expect: TEXT'")
endif()
string(REPLACE "// expect: " "" expectation "${expectation}")

set(command ${COMPILER} -std=c++20 -fno-exceptions -fno-rtti -fsyntax-only -I${ROOT}/include
            -I${ROOT}/src ${SOURCE})
execute_process(COMMAND ${command} -DGOOD RESULT_VARIABLE good ERROR_VARIABLE good_errors)
if(NOT good EQUAL 0)
  message(FATAL_ERROR "${SOURCE}: the good variant does not compile\n${good_errors}")
endif()
execute_process(COMMAND ${command} RESULT_VARIABLE bad ERROR_VARIABLE bad_errors)
if(bad EQUAL 0)
  message(FATAL_ERROR "${SOURCE}: the bad variant compiles")
endif()
string(FIND "${bad_errors}" "${expectation}" position)
if(position EQUAL -1)
  message(FATAL_ERROR "${SOURCE}: no '${expectation}' among the errors\n${bad_errors}")
endif()
