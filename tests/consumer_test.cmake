# SPDX-License-Identifier: Apache-2.0
# Proves that a consumer needs nothing but a compiler and Highway's headers:
#  1. zebcv added with add_subdirectory configures with OpenCV, GoogleTest,
#     Google Benchmark and stb unavailable, and offers none of the test,
#     benchmark, example or program targets;
#  2. the installed package (find_package(zebcv)) builds and runs a program
#     under the same restrictions;
#  3. the installed pkg-config file compiles and links the same program.
# Arguments: SRC (zebcv source tree), BUILD (a built tree to install),
# WORK (scratch directory), CC (C compiler).
set(no_extras -DCMAKE_DISABLE_FIND_PACKAGE_OpenCV=ON -DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON
    -DCMAKE_DISABLE_FIND_PACKAGE_benchmark=ON)
file(REMOVE_RECURSE ${WORK}/consumer)

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGN}\n${out}\n${err}")
  endif()
  set(out "${out}" PARENT_SCOPE)
endfunction()

# 1. As a subdirectory.
run(${CMAKE_COMMAND} -S ${SRC}/tests/consumer -B ${WORK}/consumer/sub -G Ninja -DZEBCV_SOURCE_DIR=${SRC}
    -DCMAKE_BUILD_TYPE=Release ${no_extras})
run(${CMAKE_COMMAND} --build ${WORK}/consumer/sub --target help)
foreach(t zebcv_tests zebcv_bench zebcv_cli example_first)
  if(out MATCHES "(^|\n)${t}:")
    message(FATAL_ERROR "a consumer's build offers ${t}")
  endif()
endforeach()
if(NOT out MATCHES "(^|\n)zebcv:")
  message(FATAL_ERROR "a consumer's build lacks the library target")
endif()

# 2. The installed package.
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/consumer/prefix)
run(${CMAKE_COMMAND} -S ${SRC}/tests/consumer -B ${WORK}/consumer/pkg -G Ninja
    -DCMAKE_PREFIX_PATH=${WORK}/consumer/prefix -DCMAKE_BUILD_TYPE=Release ${no_extras})
run(${CMAKE_COMMAND} --build ${WORK}/consumer/pkg)
run(${WORK}/consumer/pkg/consumer)
if(NOT out MATCHES "consumer: 2 2 0 5, zebcv ")
  message(FATAL_ERROR "unexpected output: ${out}")
endif()

# 3. pkg-config.
find_program(PKG_CONFIG pkg-config REQUIRED)
file(GLOB pcdirs ${WORK}/consumer/prefix/lib*/pkgconfig ${WORK}/consumer/prefix/lib/*/pkgconfig)
string(REPLACE ";" ":" pcpath "${pcdirs}")
set(ENV{PKG_CONFIG_PATH} "${pcpath}")
run(${PKG_CONFIG} --cflags --libs zebcv)
string(STRIP "${out}" flags)
separate_arguments(flags UNIX_COMMAND "${flags}")
run(${PKG_CONFIG} --variable=libdir zebcv)
string(STRIP "${out}" libdir)
run(${CC} ${SRC}/tests/consumer/consumer.c ${flags} -Wl,-rpath,${libdir} -o ${WORK}/consumer/pc_consumer)
run(${WORK}/consumer/pc_consumer)
if(NOT out MATCHES "consumer: 2 2 0 5, zebcv ")
  message(FATAL_ERROR "unexpected output: ${out}")
endif()
run(${PKG_CONFIG} --variable=License zebcv)
message(STATUS "consumer builds pass")
