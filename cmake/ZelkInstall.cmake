# What is installed, and where. Components:
#
#   runtime      the shared libraries
#   development  headers, the links to the libraries, package files of CMake and pkg-config
#   tools        the program zelk-msg, installed by tools/
#   docs         installed by docs/
#
# A prefix may be moved as a whole: every path in it is relative.

include(CMakePackageConfigHelpers)

set(ZELK_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/ZelkStateMessages)
set(ZELK_PKGCONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
set(ZELK_HEADER_DIR ${CMAKE_INSTALL_INCLUDEDIR}/zelk)

set(installed_libraries ZelkStateMessages)
if(NOT ZELK_SIBLINGS_PREFIX)
  list(PREPEND installed_libraries ZelkCore ZelkMessagesCommon)
endif()

# The libraries find each other, and the program finds them, wherever the prefix is.
if(NOT DEFINED CMAKE_INSTALL_RPATH)
  set_target_properties(${installed_libraries} PROPERTIES INSTALL_RPATH "$ORIGIN")
  if(TARGET zelk-msg)
    file(RELATIVE_PATH to_libraries ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(zelk-msg PROPERTIES INSTALL_RPATH "$ORIGIN/${to_libraries}")
  endif()
endif()

install(TARGETS ${installed_libraries} EXPORT ZelkStateMessagesTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  FILE_SET HEADERS DESTINATION ${ZELK_HEADER_DIR} COMPONENT development)
install(EXPORT ZelkStateMessagesTargets NAMESPACE Zelk::
  DESTINATION ${ZELK_PACKAGE_DIR} COMPONENT development)

configure_package_config_file(
  ${CMAKE_CURRENT_LIST_DIR}/ZelkStateMessagesConfig.cmake.in ${PROJECT_BINARY_DIR}/ZelkStateMessagesConfig.cmake
  INSTALL_DESTINATION ${ZELK_PACKAGE_DIR} PATH_VARS CMAKE_INSTALL_INCLUDEDIR NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ZelkStateMessagesConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/ZelkStateMessagesConfig.cmake
  ${PROJECT_BINARY_DIR}/ZelkStateMessagesConfigVersion.cmake
  DESTINATION ${ZELK_PACKAGE_DIR} COMPONENT development)
if(ZELK_SIBLINGS_PREFIX)
  install(FILES ${CMAKE_CURRENT_LIST_DIR}/ZelkSiblings.cmake DESTINATION ${ZELK_PACKAGE_DIR}
    COMPONENT development)
endif()

# zelk_pkgconfig(zelkcore ZelkCore "what it is" zelkother...) writes and installs zelkcore.pc.
function(zelk_pkgconfig name ZELK_PC_LIBRARY ZELK_PC_DESCRIPTION)
  set(ZELK_PC_NAME ${name})
  list(JOIN ARGN ", " ZELK_PC_REQUIRES)
  # From the folder of the .pc file up to the prefix.
  file(RELATIVE_PATH up ${CMAKE_INSTALL_PREFIX}/${ZELK_PKGCONFIG_DIR} ${CMAKE_INSTALL_PREFIX})
  string(REGEX REPLACE "/$" "" up ${up})
  set(ZELK_PC_PREFIX "\${pcfiledir}/${up}")
  configure_file(${CMAKE_CURRENT_FUNCTION_LIST_DIR}/zelk.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${ZELK_PKGCONFIG_DIR} COMPONENT development)
endfunction()

if(ZELK_SIBLINGS_PREFIX)
  # The platform's libraries may come without .pc files: they are named outright, at the place they were taken from.
  get_target_property(core Zelk::Core IMPORTED_LOCATION)
  get_filename_component(siblings_library_dir ${core} DIRECTORY)
  set(ZELK_PC_MORE_LIBS " -L${siblings_library_dir} -lZelkMessagesCommon -lZelkCore")
  set(ZELK_PC_MORE_CFLAGS "")
  foreach(folder IN ITEMS include/zelk include)
    if(EXISTS ${ZELK_SIBLINGS_PREFIX}/${folder}/framework/element.h)
      set(ZELK_PC_MORE_CFLAGS " -I${ZELK_SIBLINGS_PREFIX}/${folder}")
      break()
    endif()
  endforeach()
  zelk_pkgconfig(zelkstatemessages ZelkStateMessages "${PROJECT_DESCRIPTION}")
else()
  zelk_pkgconfig(zelkcore ZelkCore "Metadata tree, JSON text, serialisable bases and reflected fields")
  zelk_pkgconfig(zelkmessagescommon ZelkMessagesCommon "Base of messages addressed by an identifier" zelkcore)
  zelk_pkgconfig(zelkstatemessages ZelkStateMessages "${PROJECT_DESCRIPTION}" zelkmessagescommon zelkcore)
endif()
