# Included by a project around the call that takes in the library: nothing of the project itself may have changed.

# What the project looks like at this moment, as one text.
function(describe_project result)
  set(text "")
  foreach(variable IN ITEMS CMAKE_CXX_FLAGS CMAKE_CXX_FLAGS_RELEASE CMAKE_CXX_FLAGS_DEBUG CMAKE_BUILD_TYPE
      CMAKE_CXX_STANDARD CMAKE_CXX_EXTENSIONS CMAKE_CXX_VISIBILITY_PRESET CMAKE_POSITION_INDEPENDENT_CODE
      CMAKE_SHARED_LINKER_FLAGS CMAKE_EXE_LINKER_FLAGS CMAKE_INSTALL_RPATH CMAKE_INSTALL_PREFIX CMAKE_MODULE_PATH
      CMAKE_RUNTIME_OUTPUT_DIRECTORY CMAKE_LIBRARY_OUTPUT_DIRECTORY BUILD_SHARED_LIBS BUILD_TESTING
      CMAKE_EXPORT_COMPILE_COMMANDS)
    if(DEFINED ${variable})
      string(APPEND text "${variable}=${${variable}}\n")
    endif()
  endforeach()
  foreach(property IN ITEMS COMPILE_OPTIONS COMPILE_DEFINITIONS INCLUDE_DIRECTORIES LINK_OPTIONS LINK_LIBRARIES)
    get_property(value DIRECTORY ${CMAKE_SOURCE_DIR} PROPERTY ${property})
    string(APPEND text "${property}=${value}\n")
  endforeach()
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

# Every target below a folder, its own sub-folders included.
function(list_targets folder result)
  get_property(targets DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
  get_property(subfolders DIRECTORY ${folder} PROPERTY SUBDIRECTORIES)
  foreach(subfolder IN LISTS subfolders)
    list_targets(${subfolder} more)
    list(APPEND targets ${more})
  endforeach()
  set(${result} "${targets}" PARENT_SCOPE)
endfunction()

function(expect_no_side_effects before)
  describe_project(after)
  if(NOT after STREQUAL before)
    message(SEND_ERROR "Taking in the library changed the project:\n${before}became\n${after}")
  endif()
  list_targets(${CMAKE_SOURCE_DIR} targets)
  list(SORT targets)
  if(NOT targets STREQUAL "ZelkCore;ZelkMessagesCommon;ZelkStateMessages")
    message(SEND_ERROR "Taking in the library made these targets: ${targets}")
  endif()
endfunction()
