# SPDX-License-Identifier: MIT
# Debian packages, one per install component: `cpack -G DEB` in the build tree.
# Package dependencies come from dpkg-shlibdeps and from the component graph.
set(CPACK_PACKAGE_NAME qelkern)
set(CPACK_PACKAGE_VENDOR "QELKern developers")
set(CPACK_PACKAGE_CONTACT "QELKern developers <qelkern@example.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_RESOURCE_FILE_LICENSE ${CMAKE_CURRENT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
# dpkg-shlibdeps finds the libraries of this build here while packing.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR} ${CMAKE_BINARY_DIR}/qt)

set(QELKERN_SONAME_SUFFIX ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libqelkern${QELKERN_SONAME_SUFFIX})
set(CPACK_DEBIAN_QT-RUNTIME_PACKAGE_NAME libqelkern-qt${QELKERN_SONAME_SUFFIX})
set(CPACK_DEBIAN_DEV_PACKAGE_NAME libqelkern-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_CLI_PACKAGE_NAME qel)
set(CPACK_DEBIAN_CLI_PACKAGE_SECTION interpreters)
set(CPACK_DEBIAN_EDIT_PACKAGE_NAME qel-edit)
set(CPACK_DEBIAN_EDIT_PACKAGE_SECTION editors)

set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "QELKern script engine: shared library")
set(CPACK_COMPONENT_QT-RUNTIME_DESCRIPTION "QELKern script engine: Qt 6 widgets and dialogs")
set(CPACK_COMPONENT_DEV_DESCRIPTION
  "QELKern script engine: headers, CMake package and pkg-config files")
set(CPACK_COMPONENT_CLI_DESCRIPTION "qel: runs QEL scripts from the command line")
set(CPACK_COMPONENT_EDIT_DESCRIPTION "qel-edit: editor for QEL scripts")

set(CPACK_COMPONENT_CLI_DEPENDS runtime)
set(CPACK_COMPONENT_DEV_DEPENDS runtime)
if(TARGET qelkern-qt)
  set(CPACK_COMPONENT_QT-RUNTIME_DEPENDS runtime)
  list(APPEND CPACK_COMPONENT_DEV_DEPENDS qt-runtime)
  set(CPACK_COMPONENT_EDIT_DEPENDS qt-runtime)
  set(CPACK_COMPONENTS_ALL runtime qt-runtime dev cli edit)
else()
  set(CPACK_COMPONENTS_ALL runtime dev cli)
endif()
# The editor registers the MIME type of .qel files.
set(CPACK_DEBIAN_EDIT_PACKAGE_RECOMMENDS shared-mime-info)

include(CPack)
