# One interface target carries what every piece of the house is compiled with.
add_library(pelorin_flags INTERFACE)
target_compile_options(pelorin_flags INTERFACE
  -Wall -Wextra -Wconversion -Wshadow -Werror
  # Results are fixed to the byte: a multiplication and an addition are never fused.
  -ffp-contract=off)
target_include_directories(pelorin_flags INTERFACE ${CMAKE_SOURCE_DIR}/src)
target_compile_definitions(pelorin_flags INTERFACE PELORIN_VERSION="${PROJECT_VERSION}")

if(PELORIN_SANITIZE)
  target_compile_options(pelorin_flags INTERFACE -fsanitize=${PELORIN_SANITIZE} -fno-sanitize-recover=all
    -fno-omit-frame-pointer)
  target_link_options(pelorin_flags INTERFACE -fsanitize=${PELORIN_SANITIZE})
endif()

find_program(PELORIN_CCACHE ccache)
if(PELORIN_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${PELORIN_CCACHE})
  set(CMAKE_C_COMPILER_LAUNCHER ${PELORIN_CCACHE})
endif()
