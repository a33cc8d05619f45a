# How every target of this tree is built. Nothing here changes a setting of a project that includes this one.

set(ZELK_SOVERSION 0)

# Warnings, sanitizers and C++17 for one target.
function(zelk_compile_options target)
  target_compile_features(${target} PUBLIC cxx_std_17)
  if(PROJECT_IS_TOP_LEVEL)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
      -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast -Wcast-qual)
  endif()
  if(ZELK_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(ZELK_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${ZELK_SANITIZE} -fno-omit-frame-pointer
      -fno-sanitize-recover=all)
    target_link_options(${target} PRIVATE -fsanitize=${ZELK_SANITIZE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
      # g++ loses track of which member of a union is alive through the checks that sanitizers add.
      target_compile_options(${target} PRIVATE -Wno-maybe-uninitialized)
    endif()
  endif()
endfunction()

# A shared library of the product family: zelk_library(ZelkCore Core SOURCES ... HEADERS ...) makes libZelkCore.so.0
# and the target Zelk::Core.
function(zelk_library target export_name)
  cmake_parse_arguments(arg "" "" "SOURCES;HEADERS;LINK" ${ARGN})
  add_library(${target} SHARED ${arg_SOURCES})
  add_library(Zelk::${export_name} ALIAS ${target})
  set_target_properties(${target} PROPERTIES
    EXPORT_NAME ${export_name}
    SOVERSION ${ZELK_SOVERSION}
    VERSION ${PROJECT_VERSION}
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    VERIFY_INTERFACE_HEADER_SETS ON)
  target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${arg_HEADERS})
  target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
  if(ZELK_SIBLINGS_PREFIX)
    # The platform's headers hide those of this tree.
    target_include_directories(${target} BEFORE PUBLIC $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/siblings>)
  endif()
  target_link_libraries(${target} PUBLIC ${arg_LINK})
  # Calls inside a library are direct, calls into another skip the lazy-binding stub. Functions begin with a
  # cache line, or else their speed would depend on what happens to stand before them.
  target_compile_options(${target} PRIVATE
    -fno-semantic-interposition -fno-plt -ffunction-sections -falign-functions=64)
  # Short strings of known length, as all keys are, are made in place instead of by a call, as with -O3, which would
  # make the libraries a fifth larger.
  target_compile_options(${target} PRIVATE
    $<$<CXX_COMPILER_ID:GNU>:SHELL:--param max-inline-insns-auto=30>)
  set(exports ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/exports.map)
  target_link_options(${target} PRIVATE -Wl,--gc-sections -Wl,-z,now -Wl,--version-script=${exports})
  if(NOT ZELK_SANITIZE) # clang++ leaves the calls of its sanitizers to the program
    target_link_options(${target} PRIVATE -Wl,--no-undefined)
  endif()
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${exports})
  zelk_compile_options(${target})
endfunction()
