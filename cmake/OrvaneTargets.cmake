# One interface target carries the warnings and sanitizers that every target of the project shares.
add_library(OrvaneOptions INTERFACE)
target_compile_options(OrvaneOptions INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
target_include_directories(OrvaneOptions INTERFACE ${PROJECT_SOURCE_DIR}/src)
if(ORVANE_SANITIZE)
    target_compile_options(OrvaneOptions INTERFACE -fsanitize=${ORVANE_SANITIZE} -fno-sanitize-recover=all
                                                   -fno-omit-frame-pointer)
    target_link_options(OrvaneOptions INTERFACE -fsanitize=${ORVANE_SANITIZE})
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND ORVANE_SANITIZE MATCHES "thread")
    # GCC's thread sanitizer does not know atomic_thread_fence and says so wherever Asio uses one.
    target_compile_options(OrvaneOptions INTERFACE -Wno-tsan)
endif()

# orvane_layer(NAME DIRECTORIES dir... LINKS target...): one static library per layer, from every source of its
# folders. Folders, not files, are listed: a layer is what lies in its folder, and the platform is picked by folder.
function(orvane_layer name)
    cmake_parse_arguments(layer "" "" "DIRECTORIES;LINKS" ${ARGN})
    set(sources "")
    foreach(directory IN LISTS layer_DIRECTORIES)
        file(GLOB found CONFIGURE_DEPENDS ${directory}/*.cpp ${directory}/*.h)
        list(APPEND sources ${found})
    endforeach()
    add_library(${name} STATIC ${sources})
    target_link_libraries(${name} PUBLIC OrvaneOptions ${layer_LINKS})
    set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
endfunction()
