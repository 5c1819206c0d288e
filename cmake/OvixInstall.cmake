# `cmake --install`: headers, the static library, the SDK's images, a CMake package
# (find_package(OvixSdk CONFIG) -> Ovix::Sdk, Ovix::Testing, Ovix::Desktop) and ovix-sdk.pc.
include(CMakePackageConfigHelpers)

set(OVIX_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/OvixSdk)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ovix DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
# The desktop platform looks for the bundle under <datadir>/ovix; a program on the default platform
# finds it next to itself or where OVIX_SDK_DIR points.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/resources/OvixSdkResources.bundle
  DESTINATION ${CMAKE_INSTALL_DATADIR}/ovix)

set(ovix_exported ovix ovix_testing)
if(TARGET ovix_desktop)
  list(APPEND ovix_exported ovix_desktop)
endif()
install(TARGETS ${ovix_exported} EXPORT OvixSdkTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(EXPORT OvixSdkTargets NAMESPACE Ovix:: DESTINATION ${OVIX_CMAKE_DIR})

# What the installed package must find again for the libraries the static library links.
set(OVIX_PC_REQUIRES libcurl sqlite3 libcrypto uuid libjpeg libpng libplist-2.0)
set(OVIX_PKG_MODULES LIBCURL=libcurl UUID=uuid LIBJPEG=libjpeg LIBPNG=libpng PLIST=libplist-2.0)
if(OVIX_WITH_CAIRO)
  list(APPEND OVIX_PC_REQUIRES pangocairo)
  list(APPEND OVIX_PKG_MODULES PANGOCAIRO=pangocairo)
endif()
if(OVIX_WITH_GTK)
  list(APPEND OVIX_PC_REQUIRES gtk4 webkitgtk-6.0)
  list(APPEND OVIX_PKG_MODULES GTK4=gtk4 WEBKITGTK=webkitgtk-6.0)
endif()
set(OVIX_WITH_GTK_VALUE ${OVIX_WITH_GTK})
list(JOIN OVIX_PKG_MODULES " " OVIX_PKG_MODULES)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/OvixSdkConfig.cmake.in
  ${PROJECT_BINARY_DIR}/OvixSdkConfig.cmake INSTALL_DESTINATION ${OVIX_CMAKE_DIR} PATH_VARS CMAKE_INSTALL_DATADIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OvixSdkConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/OvixSdkConfig.cmake ${PROJECT_BINARY_DIR}/OvixSdkConfigVersion.cmake
  DESTINATION ${OVIX_CMAKE_DIR})

list(JOIN OVIX_PC_REQUIRES " " OVIX_PC_REQUIRES_PRIVATE)
# Relative to the .pc file, so the tree can be installed under any --prefix.
file(RELATIVE_PATH OVIX_PC_UP /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" OVIX_PC_UP "${OVIX_PC_UP}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/ovix-sdk.pc.in ${PROJECT_BINARY_DIR}/ovix-sdk.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ovix-sdk.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
