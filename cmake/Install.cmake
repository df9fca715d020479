# SPDX-License-Identifier: MIT
# What `cmake --install` puts where, in the components the Debian packages are
# made of: runtime (the engine library), qt-runtime, dev, cli and edit.
include(CMakePackageConfigHelpers)
set(QELKERN_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/QELKern)
set(QELKERN_PKGCONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(TARGETS qelkern EXPORT QELKernTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev)
install(DIRECTORY include/qelkern DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)
install(FILES ${QELKERN_GENERATED_INCLUDE}/qelkern/version.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qelkern COMPONENT dev)
install(EXPORT QELKernTargets NAMESPACE QELKern:: DESTINATION ${QELKERN_CMAKE_DIR} COMPONENT dev)

configure_package_config_file(cmake/QELKernConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/QELKernConfig.cmake INSTALL_DESTINATION ${QELKERN_CMAKE_DIR})
# 0.x releases break the ABI with the minor version, so only 0.2.y satisfies 0.2.
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/QELKernConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/QELKernConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/QELKernConfigVersion.cmake
  DESTINATION ${QELKERN_CMAKE_DIR} COMPONENT dev)

# pkg-config files find their prefix from where they lie, so the installed
# tree may move.
file(RELATIVE_PATH QELKERN_PC_TO_PREFIX
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" QELKERN_PC_TO_PREFIX "${QELKERN_PC_TO_PREFIX}")
configure_file(cmake/qelkern.pc.in ${CMAKE_CURRENT_BINARY_DIR}/qelkern.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/qelkern.pc DESTINATION ${QELKERN_PKGCONFIG_DIR} COMPONENT dev)

if(TARGET qel)
  install(TARGETS qel RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT cli)
  install(FILES examples/extern.qel DESTINATION ${CMAKE_INSTALL_DATADIR}/qelkern COMPONENT cli)
endif()

if(TARGET qelkern-qt)
  install(TARGETS qelkern-qt EXPORT QELKernQtTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT qt-runtime NAMELINK_COMPONENT dev)
  install(DIRECTORY qt/include/qelkern-qt DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)
  install(EXPORT QELKernQtTargets NAMESPACE QELKern:: DESTINATION ${QELKERN_CMAKE_DIR} COMPONENT dev)
  configure_file(cmake/qelkern-qt.pc.in ${CMAKE_CURRENT_BINARY_DIR}/qelkern-qt.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/qelkern-qt.pc DESTINATION ${QELKERN_PKGCONFIG_DIR} COMPONENT dev)
endif()

if(TARGET qel-edit)
  install(TARGETS qel-edit RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT edit)
  install(FILES packaging/qel-edit.desktop
    DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT edit)
  install(FILES packaging/qelkern-qel.xml
    DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages COMPONENT edit)
endif()
