# `cmake --install`: headers, the static libraries, the SDK's images, a CMake package
# (find_package(OvixSdk CONFIG [COMPONENTS Desktop]) -> Ovix::Sdk, Ovix::Testing, Ovix::Desktop) and
# pkg-config files: ovix-sdk.pc, and ovix-desktop.pc for the GTK desktop host.
include(CMakePackageConfigHelpers)

set(OVIX_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/OvixSdk)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ovix DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
# A program finds the bundle under <datadir>/ovix of the prefix it is installed in, where the library
# was installed, next to itself, or where OVIX_SDK_DIR points.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/resources/OvixSdkResources.bundle
  DESTINATION ${CMAKE_INSTALL_DATADIR}/ovix)

# Two export sets: a game that does not ask for the desktop host loads nothing that needs GTK.
install(TARGETS ovix ovix_testing EXPORT OvixSdkTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(EXPORT OvixSdkTargets NAMESPACE Ovix:: DESTINATION ${OVIX_CMAKE_DIR})
if(TARGET ovix_desktop)
  install(TARGETS ovix_desktop EXPORT OvixSdkDesktopTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(EXPORT OvixSdkDesktopTargets NAMESPACE Ovix:: DESTINATION ${OVIX_CMAKE_DIR})
endif()

# What the installed package must find again for the libraries each static library links: the
# pkg-config modules, as <prefix of the imported target>=<module>.
set(OVIX_PC_REQUIRES libcurl sqlite3 libcrypto uuid libjpeg libpng libplist-2.0)
set(OVIX_PKG_MODULES LIBCURL=libcurl UUID=uuid LIBJPEG=libjpeg LIBPNG=libpng PLIST=libplist-2.0)
if(OVIX_WITH_CAIRO)
  list(APPEND OVIX_PC_REQUIRES pangocairo)
  list(APPEND OVIX_PKG_MODULES PANGOCAIRO=pangocairo)
endif()
set(OVIX_DESKTOP_PKG_MODULES GTK4=gtk4 WEBKITGTK=webkitgtk-6.0)
set(OVIX_WITH_GTK_VALUE ${OVIX_WITH_GTK})
list(JOIN OVIX_PKG_MODULES " " OVIX_PKG_MODULES)
list(JOIN OVIX_DESKTOP_PKG_MODULES " " OVIX_DESKTOP_PKG_MODULES)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/OvixSdkConfig.cmake.in
  ${PROJECT_BINARY_DIR}/OvixSdkConfig.cmake INSTALL_DESTINATION ${OVIX_CMAKE_DIR} PATH_VARS CMAKE_INSTALL_DATADIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OvixSdkConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/OvixSdkConfig.cmake ${PROJECT_BINARY_DIR}/OvixSdkConfigVersion.cmake
  DESTINATION ${OVIX_CMAKE_DIR})

list(JOIN OVIX_PC_REQUIRES " " OVIX_PC_REQUIRES_PRIVATE)
# Relative to the .pc file, so the tree can be installed under any --prefix and moved.
file(RELATIVE_PATH OVIX_PC_UP /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" OVIX_PC_UP "${OVIX_PC_UP}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/ovix-sdk.pc.in ${PROJECT_BINARY_DIR}/ovix-sdk.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ovix-sdk.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(TARGET ovix_desktop)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/ovix-desktop.pc.in ${PROJECT_BINARY_DIR}/ovix-desktop.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/ovix-desktop.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endif()
