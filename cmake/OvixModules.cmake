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
  # The static library made of this module hands these on to whoever links it, installed or not.
  set_property(TARGET ${target} PROPERTY OVIX_MODULE_LIBS ${M_LIBS})
endfunction()

# ovix_archive(<target> MODULES <modules...>)
#
# A static library made of exactly these modules' objects. Only a target that links an OBJECT library
# directly gets its objects, so every module must be named in exactly one archive: none twice
# (duplicate symbols) and none left out (undefined at link). The modules exist only in this build; an
# installed archive names just the third-party libraries they need.
function(ovix_archive target)
  cmake_parse_arguments(A "" "" "MODULES" ${ARGN})
  set(libs)
  foreach(module IN LISTS A_MODULES)
    get_target_property(module_libs ${module} OVIX_MODULE_LIBS)
    if(module_libs)
      list(APPEND libs ${module_libs})
    endif()
    get_property(archived TARGET ${module} PROPERTY OVIX_ARCHIVE)
    if(archived)
      message(FATAL_ERROR "${module} is in both ${archived} and ${target}")
    endif()
    set_property(TARGET ${module} PROPERTY OVIX_ARCHIVE ${target})
  endforeach()
  list(REMOVE_DUPLICATES libs)
  list(TRANSFORM A_MODULES PREPEND "$<BUILD_INTERFACE:")
  list(TRANSFORM A_MODULES APPEND ">")
  add_library(${target} STATIC)
  target_link_libraries(${target} PUBLIC Threads::Threads PRIVATE ${A_MODULES} ${libs})
  target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_compile_features(${target} PUBLIC cxx_std_20)
endfunction()

# Fails the configure step when a module is in no archive: its objects would be missing at link.
function(ovix_check_archived)
  get_property(modules GLOBAL PROPERTY OVIX_MODULES)
  foreach(module IN LISTS modules)
    get_property(archived TARGET ${module} PROPERTY OVIX_ARCHIVE)
    if(NOT archived)
      message(FATAL_ERROR "${module} is in no library")
    endif()
  endforeach()
endfunction()
