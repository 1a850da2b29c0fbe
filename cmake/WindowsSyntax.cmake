# The Windows compile check. No Qt for Windows is at hand on the build machine, so every source file
# of the programs is compiled syntax-only by MinGW-w64 against the host's Qt headers (the same for
# both systems), with the definitions and the platform sources a Windows build would have.

set(SABLE_WINDOWS_SYNTAX_DIR ${CMAKE_BINARY_DIR}/windows-syntax)

# Every target defined in `dir` and the folders under it.
function(_sable_program_targets dir out)
    get_property(targets DIRECTORY ${dir} PROPERTY BUILDSYSTEM_TARGETS)
    get_property(subdirs DIRECTORY ${dir} PROPERTY SUBDIRECTORIES)
    foreach(sub IN LISTS subdirs)
        _sable_program_targets(${sub} more)
        list(APPEND targets ${more})
    endforeach()
    set(${out} ${targets} PARENT_SCOPE)
endfunction()

function(_sable_regex_escape text out)
    string(REGEX REPLACE "([][+.*()^$?|\\\\])" "\\\\\\1" escaped "${text}")
    set(${out} "${escaped}" PARENT_SCOPE)
endfunction()

# Writes the lists of one target for syntax-check.sh: <target>.sources with `files` and
# <target>.args with `content` (the compiler's arguments, one a line in single quotes, generator
# expressions allowed). A file with definitions of its own gets lists of its own,
# <target>@<file name>.*, with those definitions added to the arguments.
function(_sable_write_syntax_lists out target files content)
    set(plain "")
    foreach(file IN LISTS files)
        get_source_file_property(own_defs ${file} TARGET_DIRECTORY ${target} COMPILE_DEFINITIONS)
        if(NOT own_defs)
            list(APPEND plain ${file})
            continue()
        endif()
        cmake_path(GET file FILENAME name)
        list(TRANSFORM own_defs PREPEND "'-D")
        list(TRANSFORM own_defs APPEND "'")
        list(JOIN own_defs "\n" own_defs)
        file(WRITE ${out}/${target}@${name}.sources "${file}\n")
        file(GENERATE OUTPUT ${out}/${target}@${name}.args CONTENT "${content}${own_defs}\n" TARGET ${target})
    endforeach()
    if(plain)
        list(JOIN plain "\n" plain)
        file(WRITE ${out}/${target}.sources "${plain}\n")
        file(GENERATE OUTPUT ${out}/${target}.args CONTENT "${content}" TARGET ${target})
    endif()
endfunction()

# Writes, for each library and program, <target>.args (the compiler's arguments, one a line, for
# gcc's @file) and <target>.sources (its .cpp files as Windows selects them; see
# _sable_write_syntax_lists). Run once every folder
# has added its sources.
function(sable_write_windows_syntax_lists)
    set(out ${SABLE_WINDOWS_SYNTAX_DIR})
    # Lists of an earlier run may name targets that are gone; the record of the files that passed
    # (the check's own) stays.
    file(GLOB old_lists ${out}/*.sources ${out}/*.args)
    if(old_lists)
        file(REMOVE ${old_lists})
    endif()

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

    # The libraries and programs; tests and benchmarks are left out.
    set(targets "")
    foreach(dir IN ITEMS src tools)
        _sable_program_targets(${PROJECT_SOURCE_DIR}/${dir} found)
        list(APPEND targets ${found})
    endforeach()
    foreach(target IN LISTS targets)
        get_target_property(type ${target} TYPE)
        if(NOT type MATCHES "^(EXECUTABLE|STATIC_LIBRARY|SHARED_LIBRARY|OBJECT_LIBRARY)$")
            continue()
        endif()
        get_target_property(base ${target} SOURCE_DIR)
        get_target_property(sources ${target} SOURCES)
        get_target_property(other ${target} SABLE_OTHER_SOURCES)
        get_target_property(windows ${target} SABLE_WINDOWS_SOURCES)
        set(files "")
        foreach(source IN LISTS sources windows)
            if(source MATCHES "\\$<" OR NOT source MATCHES "\\.cpp$")
                continue()
            endif()
            cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY ${base} NORMALIZE)
            # Generated files (resources, moc) are left out: they are not written for one system.
            if(NOT source MATCHES "^${source_prefix}" OR source MATCHES "^${binary_prefix}" OR source IN_LIST other)
                continue()
            endif()
            list(APPEND files ${source})
        endforeach()
        if(NOT files)
            continue()
        endif()
        list(REMOVE_DUPLICATES files)

        # The target's own definitions and include folders, with everything of this system left out:
        # the database client shortcuts, and include folders other than the project's and Qt's.
        set(defs "$<FILTER:$<TARGET_PROPERTY:${target},COMPILE_DEFINITIONS>,EXCLUDE,^SABLE_(SQLITE_NATIVE|POSTGRES_COPY)$>")
        set(includes "$<REMOVE_DUPLICATES:$<TARGET_PROPERTY:${target},INCLUDE_DIRECTORIES>>")
        set(own "$<FILTER:$<FILTER:${includes},INCLUDE,^${source_prefix}>,EXCLUDE,^${binary_prefix}>")
        set(qt "$<FILTER:${includes},INCLUDE,^${qt_headers}>")
        set(args -std=c++${CMAKE_CXX_STANDARD} -fsyntax-only ${SABLE_WARNING_FLAGS} -Werror)
        list(TRANSFORM platform_definitions PREPEND -D OUTPUT_VARIABLE platform_args)
        list(APPEND args ${platform_args})
        list(JOIN args "'\n'" args)
        # One argument a line, in single quotes for gcc's response-file reader.
        string(CONCAT content "'${args}'\n"
                              "$<$<BOOL:${defs}>:'-D$<JOIN:${defs},'\n'-D>'\n>"
                              "$<$<BOOL:${own}>:'-I$<JOIN:${own},'\n'-I>'\n>"
                              "$<$<BOOL:${qt}>:'-isystem'\n'$<JOIN:${qt},'\n'-isystem'\n'>'\n>"
                              "'-isystem'\n'${mkspec}'\n'-isystem'\n'${third_party}'\n")
        _sable_write_syntax_lists(${out} ${target} "${files}" "${content}")
    endforeach()
endfunction()

# The custom target; the CTest test is registered with the other tests.
set(SABLE_WINDOWS_SYNTAX_CHECK ${PROJECT_SOURCE_DIR}/tests/windows/syntax-check.sh)
add_custom_target(windows-syntax COMMAND ${SABLE_WINDOWS_SYNTAX_CHECK} ${SABLE_WINDOWS_SYNTAX_DIR}
                  USES_TERMINAL VERBATIM)
cmake_language(DEFER DIRECTORY ${PROJECT_SOURCE_DIR} CALL sable_write_windows_syntax_lists)
