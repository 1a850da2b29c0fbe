# The lists that tests/windows/syntax-check.sh compiles: which files of which targets, with which
# arguments. The Windows check (WindowsSyntax.cmake) and the clang check (ClangSyntax.cmake) differ
# only in the compiler's arguments.

include_guard(GLOBAL)

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

# Writes the lists of one target: <target>.sources with `files` and <target>.args with `content`. A
# file with definitions of its own gets lists of its own, <target>@<file name>.*, with those
# definitions added to the arguments.
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

# sable_write_syntax_lists(OUT FOLDERS folder... CONTENT args [WINDOWS])
# Writes into OUT, for each library and program defined under FOLDERS (of the project), <target>.args
# and <target>.sources (its own .cpp files; with WINDOWS, as a Windows build selects them). CONTENT is
# the compiler's arguments, one a line in single quotes for the response-file reader; its generator
# expressions are evaluated for each target, so `$<TARGET_PROPERTY:prop>` reads that target's.
# Run once every folder has added its sources.
function(sable_write_syntax_lists out)
    cmake_parse_arguments(S "WINDOWS" "CONTENT" "FOLDERS" ${ARGN})
    # Lists of an earlier run may name targets that are gone; the record of the files that passed
    # (the check's own) stays.
    file(GLOB old_lists ${out}/*.sources ${out}/*.args)
    if(old_lists)
        file(REMOVE ${old_lists})
    endif()
    _sable_regex_escape(${PROJECT_SOURCE_DIR}/ source_prefix)
    _sable_regex_escape(${PROJECT_BINARY_DIR}/ binary_prefix)

    set(targets "")
    foreach(dir IN LISTS S_FOLDERS)
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
        set(other "")
        if(S_WINDOWS)
            get_target_property(windows ${target} SABLE_WINDOWS_SOURCES)
            get_target_property(other ${target} SABLE_OTHER_SOURCES)
            list(APPEND sources ${windows})
        endif()
        set(files "")
        foreach(source IN LISTS sources)
            if(source MATCHES "\\$<" OR NOT source MATCHES "\\.cpp$")
                continue()
            endif()
            cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY ${base} NORMALIZE)
            # Generated files (resources, moc) are Qt's text, not ours, and not written for one system.
            if(NOT source MATCHES "^${source_prefix}" OR source MATCHES "^${binary_prefix}" OR source IN_LIST other)
                continue()
            endif()
            list(APPEND files ${source})
        endforeach()
        if(NOT files)
            continue()
        endif()
        list(REMOVE_DUPLICATES files)
        _sable_write_syntax_lists(${out} ${target} "${files}" "${S_CONTENT}")
    endforeach()
endfunction()
