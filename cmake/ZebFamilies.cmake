# Every library source is compiled twice, once per processor variant:
# ZEB_VARIANT=0 (u8, which also emits the exported stubs and tables) and
# ZEB_VARIANT=1 (n8). Subsystem directories register their family sources
# with zeb_add_family_sources(); zeb_build_library() makes the libraries.

define_property(GLOBAL PROPERTY ZEB_FAMILY_SOURCES
  BRIEF_DOCS "zebcv family sources" FULL_DOCS "Sources compiled once per variant")

function(zeb_add_family_sources)
  foreach(src IN LISTS ARGN)
    get_filename_component(abs ${src} ABSOLUTE)
    set_property(GLOBAL APPEND PROPERTY ZEB_FAMILY_SOURCES ${abs})
  endforeach()
endfunction()

function(zeb_build_library)
  get_property(srcs GLOBAL PROPERTY ZEB_FAMILY_SOURCES)
  foreach(v 0 1)
    add_library(zebcv_v${v} OBJECT ${srcs})
    target_compile_definitions(zebcv_v${v} PRIVATE ZEB_VARIANT=${v} ZEBCV_BUILDING=1)
    target_include_directories(zebcv_v${v} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
  endforeach()
  target_compile_definitions(zebcv_v0 PRIVATE ZEB_EMIT_STUBS=1)

  set(objs $<TARGET_OBJECTS:zebcv_v0> $<TARGET_OBJECTS:zebcv_v1>)
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
endfunction()
