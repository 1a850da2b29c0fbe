# sable_platform_sources(TARGET WINDOWS files... OTHER files...): the files of WINDOWS in a Windows
# build, those of OTHER elsewhere. Both lists are kept on the target, so that the Windows compile
# check (WindowsSyntax.cmake) makes the Windows choice on any system.
function(sable_platform_sources target)
    cmake_parse_arguments(P "" "" "WINDOWS;OTHER" ${ARGN})
    list(TRANSFORM P_WINDOWS PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
    list(TRANSFORM P_OTHER PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
    if(WIN32)
        target_sources(${target} PRIVATE ${P_WINDOWS})
    else()
        target_sources(${target} PRIVATE ${P_OTHER})
    endif()
    set_property(TARGET ${target} APPEND PROPERTY SABLE_WINDOWS_SOURCES ${P_WINDOWS})
    set_property(TARGET ${target} APPEND PROPERTY SABLE_OTHER_SOURCES ${P_OTHER})
endfunction()
