# One interface target carries the warnings and sanitizers that every target of the project shares.
add_library(OrvaneOptions INTERFACE)
target_compile_options(OrvaneOptions INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
target_include_directories(OrvaneOptions INTERFACE ${PROJECT_SOURCE_DIR}/src)
if(APPLE)
    # What a later system advises against still works on those that the program is for.
    target_compile_options(OrvaneOptions INTERFACE -Wno-error=deprecated-declarations)
endif()
if(ORVANE_SANITIZE)
    target_compile_options(OrvaneOptions INTERFACE -fsanitize=${ORVANE_SANITIZE} -fno-sanitize-recover=all
                                                   -fno-omit-frame-pointer)
    target_link_options(OrvaneOptions INTERFACE -fsanitize=${ORVANE_SANITIZE})
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND ORVANE_SANITIZE MATCHES "thread")
    # GCC's thread sanitizer does not know atomic_thread_fence and says so wherever Asio uses one.
    target_compile_options(OrvaneOptions INTERFACE -Wno-tsan)
endif()

if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Where several sources are compiled as one, GCC takes each for a header, and a coroutine's frame that holds a
    # lambda for a type that other units could see.
    target_compile_options(OrvaneOptions INTERFACE -Wno-subobject-linkage)
endif()

# orvane_layer(NAME DIRECTORIES dir... LINKS target...): one static library per layer, from every source of its
# folders. Folders, not files, are listed: a layer is what lies in its folder, and the platform is picked by folder.
function(orvane_layer name)
    cmake_parse_arguments(layer "" "" "DIRECTORIES;LINKS" ${ARGN})
    set(sources "")
    foreach(directory IN LISTS layer_DIRECTORIES)
        file(GLOB found CONFIGURE_DEPENDS ${directory}/*.cpp ${directory}/*.mm ${directory}/*.h)
        list(APPEND sources ${found})
    endforeach()
    # A program's own main is no part of what its tests link.
    list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
    add_library(${name} STATIC ${sources})
    target_link_libraries(${name} PUBLIC OrvaneOptions ${layer_LINKS})
    set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
endfunction()
