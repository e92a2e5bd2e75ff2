# Each folder under src/ is a layer and one library. A layer sees the headers of the layers it names in
# USES (and of those they use), and no others: its include folder holds links to its own headers alone,
# so that an include that points upwards does not compile.

add_library(tessaspaces_options INTERFACE)
target_compile_options(tessaspaces_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-qual)
if(TESSASPACES_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "TESSASPACES_FUZZ needs clang: -DCMAKE_CXX_COMPILER=clang++")
  endif()
  # All code counts its own coverage; the programs themselves add libFuzzer's main.
  set(TESSASPACES_SANITIZE fuzzer-no-link address undefined)
endif()
if(TESSASPACES_SANITIZE)
  string(REPLACE ";" "," _sanitizers "${TESSASPACES_SANITIZE}")
  target_compile_options(tessaspaces_options INTERFACE
    -fsanitize=${_sanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(tessaspaces_options INTERFACE -fsanitize=${_sanitizers})
endif()

# tessaspaces_layer(NAME folder [USES layer...] [LIBRARIES target...])
# NAME is also the prefix of the includes: tessaspaces_layer(model ...) gives "model/Snapshot.h".
function(tessaspaces_layer name)
  cmake_parse_arguments(LAYER "" "" "USES;LIBRARIES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  # main.cpp belongs to the program that is made from the layer.
  list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
  file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.h)

  set(root ${PROJECT_BINARY_DIR}/layers/${name})
  string(REPLACE "/" "_" target tessaspaces_${name})
  file(REMOVE_RECURSE ${root})
  file(MAKE_DIRECTORY ${root}/${name})
  foreach(header IN LISTS headers)
    get_filename_component(file ${header} NAME)
    file(CREATE_LINK ${header} ${root}/${name}/${file} SYMBOLIC)
  endforeach()

  add_library(${target} STATIC ${sources})
  target_include_directories(${target} PUBLIC ${root})
  target_link_libraries(${target} PUBLIC tessaspaces_options ${LAYER_LIBRARIES})
  foreach(used IN LISTS LAYER_USES)
    string(REPLACE "/" "_" used_target tessaspaces_${used})
    target_link_libraries(${target} PUBLIC ${used_target})
  endforeach()
endfunction()
