# The Windows compile check. No Qt for Windows is at hand on the build machine, so every source file
# of the programs is compiled syntax-only by MinGW-w64 against the host's Qt headers (the same for
# both systems), with the definitions and the platform sources a Windows build would have.

set(SABLE_WINDOWS_SYNTAX_DIR ${CMAKE_BINARY_DIR}/windows-syntax)

include(${CMAKE_CURRENT_LIST_DIR}/SyntaxCheck.cmake)

# Writes the lists of the libraries and programs (tests and benchmarks are left out) as a Windows
# build would compile them.
function(sable_write_windows_syntax_lists)
    set(out ${SABLE_WINDOWS_SYNTAX_DIR})
    # Third-party headers, each alone in a folder of its own: their folder on this system also holds
    # the system's own headers, which must not stand in for MinGW's. SQLite's and PostgreSQL's
    # headers are not needed: a Windows build reaches both databases through Qt's drivers only
    # (SABLE_SQLITE_NATIVE, SABLE_POSTGRES_COPY).
    set(third_party ${out}/include)
    file(MAKE_DIRECTORY ${third_party})
    get_target_property(curl_dirs CURL::libcurl INTERFACE_INCLUDE_DIRECTORIES)
    find_path(SABLE_CURL_HEADERS curl/curl.h HINTS ${curl_dirs} NO_DEFAULT_PATH REQUIRED)
    file(CREATE_LINK ${SABLE_CURL_HEADERS}/curl ${third_party}/curl SYMBOLIC)
    get_target_property(zlib_dirs ZLIB::ZLIB INTERFACE_INCLUDE_DIRECTORIES)
    foreach(header IN ITEMS zlib.h zconf.h)
        find_file(SABLE_ZLIB_${header} ${header} HINTS ${zlib_dirs} NO_DEFAULT_PATH REQUIRED)
        file(CREATE_LINK ${SABLE_ZLIB_${header}} ${third_party}/${header} SYMBOLIC)
    endforeach()

    # What Qt's own packages add on Windows (Qt6::Platform built by MinGW): the platform macros, the
    # wide-character Windows API, and the win32-g++ mkspec in place of this system's.
    set(platform_definitions WIN32 WIN64 _WIN64 _ENABLE_EXTENDED_ALIGNED_STORAGE MINGW_HAS_SECURE_API=1 UNICODE _UNICODE)
    get_target_property(qt_platform_dirs Qt6::Platform INTERFACE_INCLUDE_DIRECTORIES)
    set(qt_headers "")
    set(mkspec "")
    foreach(dir IN LISTS qt_platform_dirs)
        if(dir MATCHES "^(.*/mkspecs)/[^/]+$")
            set(mkspec ${CMAKE_MATCH_1}/win32-g++)
        else()
            set(qt_headers ${dir})
        endif()
    endforeach()
    if(NOT EXISTS ${mkspec}/qplatformdefs.h OR NOT EXISTS ${qt_headers}/QtCore)
        message(FATAL_ERROR "Qt's headers or its win32-g++ mkspec were not found in: ${qt_platform_dirs}")
    endif()

    _sable_regex_escape(${PROJECT_SOURCE_DIR}/ source_prefix)
    _sable_regex_escape(${PROJECT_BINARY_DIR}/ binary_prefix)
    _sable_regex_escape(${qt_headers} qt_headers)

    # The target's own definitions and include folders, with everything of this system left out: the
    # database client shortcuts, and include folders other than the project's and Qt's.
    set(defs "$<FILTER:$<TARGET_PROPERTY:COMPILE_DEFINITIONS>,EXCLUDE,^SABLE_(SQLITE_NATIVE|POSTGRES_COPY)$>")
    set(includes "$<REMOVE_DUPLICATES:$<TARGET_PROPERTY:INCLUDE_DIRECTORIES>>")
    set(own "$<FILTER:$<FILTER:${includes},INCLUDE,^${source_prefix}>,EXCLUDE,^${binary_prefix}>")
    set(qt "$<FILTER:${includes},INCLUDE,^${qt_headers}>")
    set(args -std=c++${CMAKE_CXX_STANDARD} -fsyntax-only ${SABLE_WARNING_FLAGS} -Werror)
    list(TRANSFORM platform_definitions PREPEND -D OUTPUT_VARIABLE platform_args)
    list(APPEND args ${platform_args})
    list(JOIN args "'\n'" args)
    string(CONCAT content "'${args}'\n"
                          "$<$<BOOL:${defs}>:'-D$<JOIN:${defs},'\n'-D>'\n>"
                          "$<$<BOOL:${own}>:'-I$<JOIN:${own},'\n'-I>'\n>"
                          "$<$<BOOL:${qt}>:'-isystem'\n'$<JOIN:${qt},'\n'-isystem'\n'>'\n>"
                          "'-isystem'\n'${mkspec}'\n'-isystem'\n'${third_party}'\n")
    sable_write_syntax_lists(${out} FOLDERS src tools CONTENT "${content}" WINDOWS)
endfunction()

# The custom target; the CTest test is registered with the other tests.
set(SABLE_WINDOWS_SYNTAX_CHECK ${PROJECT_SOURCE_DIR}/tests/windows/syntax-check.sh)
add_custom_target(windows-syntax COMMAND ${SABLE_WINDOWS_SYNTAX_CHECK} ${SABLE_WINDOWS_SYNTAX_DIR}
                  USES_TERMINAL VERBATIM)
cmake_language(DEFER DIRECTORY ${PROJECT_SOURCE_DIR} CALL sable_write_windows_syntax_lists)
