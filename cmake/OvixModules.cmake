# ovix_module(<target> DIR <folder under src/> SOURCES <files...> [USES <modules...>] [LIBS <libs...>])
#
# One layer or backend of the library, as an OBJECT library. Its headers are reachable as
# "<folder>/<Header>.h" only by itself and by the modules that name it in USES: each module gets an
# include root of its own in the build tree holding links to just its folder's headers. So an include
# against the layering (a component reaching the facade, the kit reaching a screen) fails to compile.
# The public headers under include/ are visible to every module; check-boundary polices those.
function(ovix_module target)
  cmake_parse_arguments(M "" "DIR" "SOURCES;USES;LIBS" ${ARGN})
  set(folder ${PROJECT_SOURCE_DIR}/src/${M_DIR})
  set(root ${PROJECT_BINARY_DIR}/modules/${target})
  list(TRANSFORM M_SOURCES PREPEND ${folder}/)
  add_library(${target} OBJECT ${M_SOURCES})

  file(GLOB headers CONFIGURE_DEPENDS ${folder}/*.h)
  file(MAKE_DIRECTORY ${root}/${M_DIR})
  foreach(header IN LISTS headers)
    get_filename_component(name ${header} NAME)
    file(CREATE_LINK ${header} ${root}/${M_DIR}/${name} SYMBOLIC)
  endforeach()

  target_include_directories(${target} PUBLIC ${root} ${PROJECT_SOURCE_DIR}/include)
  target_link_libraries(${target} PUBLIC ${M_USES} Threads::Threads PRIVATE ${M_LIBS})
  target_compile_features(${target} PUBLIC cxx_std_20)
  ovix_warnings(${target})
  set_property(GLOBAL APPEND PROPERTY OVIX_MODULES ${target})
  # The static library hands these on to whoever links it, installed or not.
  set_property(GLOBAL APPEND PROPERTY OVIX_MODULE_LIBS ${M_LIBS})
endfunction()
