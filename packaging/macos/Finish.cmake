# Puts the libraries that Orvane.app needs into it, and signs it:
#   cmake -D BUNDLE=Orvane.app -D VIEWS=src/Views -D LIBRARIES=FOLDER -D IDENTITY=NAME -D MACDEPLOYQT=PROGRAM
#         -D CODESIGN=PROGRAM -P Finish.cmake
# LIBRARIES is where Qt's frameworks are found together, wherever each of them is installed.
# Without a name it is signed for this Mac only, and its runtime is not hardened: such a signature belongs to nobody, and a
# hardened runtime loads no library of nobody's.
cmake_minimum_required(VERSION 3.25)

function(run)
    execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

set(programs ${BUNDLE}/Contents/MacOS)
run(${MACDEPLOYQT} ${BUNDLE} -always-overwrite -qmldir=${VIEWS} -libpath=${LIBRARIES}
    -executable=${programs}/orvane-cli)

set(signature --force --sign -)
set(rights "")
if(IDENTITY)
    set(signature --force --timestamp --options runtime --sign ${IDENTITY})
    set(rights --entitlements ${CMAKE_CURRENT_LIST_DIR}/Orvane.entitlements)
endif()
# From within: a signature holds for what lies below, too.
file(GLOB_RECURSE libraries LIST_DIRECTORIES false ${BUNDLE}/Contents/Frameworks/*.dylib ${BUNDLE}/Contents/PlugIns/*.dylib
    ${BUNDLE}/Contents/Resources/*.dylib)
file(GLOB frameworks LIST_DIRECTORIES true ${BUNDLE}/Contents/Frameworks/*.framework)
foreach(code IN LISTS libraries frameworks)
    run(${CODESIGN} ${signature} ${code})
endforeach()
run(${CODESIGN} ${signature} ${programs}/orvane-cli)
run(${CODESIGN} ${signature} ${rights} ${BUNDLE})
run(${CODESIGN} --verify --deep --strict ${BUNDLE})
