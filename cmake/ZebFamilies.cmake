# SPDX-License-Identifier: Apache-2.0
# Every library source is compiled once. Family sources compile their
# vector kernels once per instruction-set target themselves (Highway's
# foreach_target), so the build needs only Highway's headers. Subsystem
# directories register their sources with zeb_add_family_sources();
# zeb_build_library() makes the libraries.

define_property(GLOBAL PROPERTY ZEB_FAMILY_SOURCES
  BRIEF_DOCS "zebcv family sources" FULL_DOCS "Sources of the zebcv library")

function(zeb_add_family_sources)
  foreach(src IN LISTS ARGN)
    get_filename_component(abs ${src} ABSOLUTE)
    set_property(GLOBAL APPEND PROPERTY ZEB_FAMILY_SOURCES ${abs})
  endforeach()
endfunction()

# Highway: headers only (no runtime functions of libhwy are used). Found
# through its CMake package or pkg-config.
function(zeb_find_highway out)
  find_package(hwy CONFIG QUIET)
  if(TARGET hwy::hwy)
    get_target_property(dirs hwy::hwy INTERFACE_INCLUDE_DIRECTORIES)
  else()
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(HWY REQUIRED libhwy)
    set(dirs ${HWY_INCLUDE_DIRS})
  endif()
  set(${out} ${dirs} PARENT_SCOPE)
endfunction()

function(zeb_build_library)
  get_property(srcs GLOBAL PROPERTY ZEB_FAMILY_SOURCES)
  zeb_find_highway(hwy_includes)
  add_library(zebcv_objs OBJECT ${srcs})
  target_compile_definitions(zebcv_objs PRIVATE ZEBCV_BUILDING=1
    # Targets: the SSSE3 baseline, AVX2 and AVX-512 (SSE4 adds nothing the
    # kernels use over SSSE3).
    HWY_DISABLED_TARGETS=HWY_SSE4)
  target_include_directories(zebcv_objs PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
  target_include_directories(zebcv_objs SYSTEM PRIVATE ${hwy_includes})

  set(objs $<TARGET_OBJECTS:zebcv_objs>)
  add_library(zebcv SHARED ${objs})
  add_library(zebcv_static STATIC ${objs})
  set_target_properties(zebcv_static PROPERTIES OUTPUT_NAME zebcv)
  # Installed next to each other: libzebcv finds libzebcore by its own path.
  set_target_properties(zebcv PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
    INSTALL_RPATH "$ORIGIN")
  # Only the library's own functions leave the shared object.
  target_link_options(zebcv PRIVATE -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/zebcv.map -Wl,--no-undefined)
  set_property(TARGET zebcv APPEND PROPERTY LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/zebcv.map)
  foreach(t zebcv zebcv_static)
    target_link_libraries(${t} PUBLIC zebcore)
    target_include_directories(${t} PUBLIC
      $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  endforeach()
  add_library(zebcv::zebcv ALIAS zebcv)

  # The test suite's library: the same objects on the test build of zebcore,
  # which carries the failure-injection hooks. Never installed.
  if(TARGET zebcore_test_hooks)
    add_library(zebcv_testing STATIC ${objs})
    target_link_libraries(zebcv_testing PUBLIC zebcore_test_hooks)
    target_include_directories(zebcv_testing PUBLIC ${PROJECT_SOURCE_DIR}/include)
  endif()
endfunction()
