# Takes libZelkCore and libZelkMessagesCommon from where the platform has installed them, instead of building them.

# zelk_find_siblings([REQUIRED] [STAGE <folder>] PREFIXES <prefix>...)
#
# Makes the imported targets Zelk::Core and Zelk::MessagesCommon. Looked for below each prefix in turn, and nowhere
# else: lib*/libZelkCore.so (or .so.0), lib*/libZelkMessagesCommon.so (or .so.0), and the folders framework/ and
# msgs/common/ with their headers below include/zelk or include. No package file of CMake or pkg-config is needed
# there. With STAGE the headers are reached through links in that folder, so that nothing else below the include
# folder of the prefix, an older copy of the state messages for one, can be picked up by mistake. Sets
# ZELK_SIBLINGS_FOUND, and ZELK_SIBLINGS_MISSING to what was not found.
function(zelk_find_siblings)
  cmake_parse_arguments(arg "REQUIRED" "STAGE" "PREFIXES" ${ARGN})
  set(missing "")

  set(library_folders lib lib64)
  if(CMAKE_LIBRARY_ARCHITECTURE)
    list(PREPEND library_folders lib/${CMAKE_LIBRARY_ARCHITECTURE})
  endif()
  foreach(name IN ITEMS ZelkCore ZelkMessagesCommon)
    find_library(${name} NAMES lib${name}.so lib${name}.so.0 PATHS ${arg_PREFIXES}
      PATH_SUFFIXES ${library_folders} NO_DEFAULT_PATH NO_CACHE)
    if(NOT ${name})
      list(APPEND missing lib${name}.so)
    endif()
  endforeach()

  foreach(header IN ITEMS framework/element.h msgs/common/message.h)
    get_filename_component(folder ${header} DIRECTORY)
    find_path(${folder} ${header} PATHS ${arg_PREFIXES} PATH_SUFFIXES include/zelk include
      NO_DEFAULT_PATH NO_CACHE)
    if(NOT ${folder})
      list(APPEND missing ${header})
    elseif(arg_STAGE)
      set(link ${arg_STAGE}/${folder})
      get_filename_component(parent ${link} DIRECTORY)
      file(MAKE_DIRECTORY ${parent})
      file(REAL_PATH ${folder} target BASE_DIRECTORY ${${folder}})
      file(CREATE_LINK ${target} ${link} SYMBOLIC)
      set(${folder} ${arg_STAGE})
    endif()
  endforeach()

  if(missing)
    list(JOIN missing ", " missing)
    set(ZELK_SIBLINGS_FOUND FALSE PARENT_SCOPE)
    set(ZELK_SIBLINGS_MISSING "${missing}" PARENT_SCOPE)
    if(arg_REQUIRED)
      message(FATAL_ERROR "The platform's libraries are not complete below ${arg_PREFIXES}: no ${missing}")
    endif()
    return()
  endif()

  foreach(target IN ITEMS Core MessagesCommon)
    if(NOT TARGET Zelk::${target})
      add_library(Zelk::${target} SHARED IMPORTED GLOBAL)
      set_target_properties(Zelk::${target} PROPERTIES IMPORTED_LOCATION ${Zelk${target}})
      if(arg_STAGE)
        # A folder of system headers would be searched last, after those of the tree that it is to hide.
        set_target_properties(Zelk::${target} PROPERTIES SYSTEM OFF)
      endif()
    endif()
  endforeach()
  target_include_directories(Zelk::Core INTERFACE ${framework})
  target_compile_features(Zelk::Core INTERFACE cxx_std_17)
  target_include_directories(Zelk::MessagesCommon INTERFACE ${msgs/common})
  target_link_libraries(Zelk::MessagesCommon INTERFACE Zelk::Core)
  set(ZELK_SIBLINGS_FOUND TRUE PARENT_SCOPE)
endfunction()
