# The clang compile check. The programs are built with GCC; clang rejects some things GCC takes
# (a structured binding captured by a lambda) and warns about others, so every source file of the
# core library and the command-line programs is also compiled syntax-only by clang, with the
# project's warnings as errors. The files and the compiler's arguments are listed here; the check
# itself is tests/windows/syntax-check.sh with clang as its compiler.

set(SABLE_CLANG_SYNTAX_DIR ${CMAKE_BINARY_DIR}/clang-syntax)
find_program(SABLE_CLANG_CXX NAMES clang++-14 clang++)

include(${CMAKE_CURRENT_LIST_DIR}/SyntaxCheck.cmake)

# Writes the lists of the targets of src/core and tools, as this system builds them.
function(sable_write_clang_syntax_lists)
    _sable_regex_escape(${PROJECT_SOURCE_DIR}/ source_prefix)
    _sable_regex_escape(${PROJECT_BINARY_DIR}/ binary_prefix)
    # The compiler's own folders (/usr/include, ...) stay out: named with -isystem they would come
    # before the C++ library's wrappers of the C headers, whose #include_next then finds nothing.
    set(implicit "")
    foreach(dir IN LISTS CMAKE_CXX_IMPLICIT_INCLUDE_DIRECTORIES)
        _sable_regex_escape(${dir} dir)
        list(APPEND implicit ${dir})
    endforeach()
    list(JOIN implicit "|" implicit)

    # The project's folders (sources and generated headers) as -I, everything else as -isystem, so
    # that only our own code has to be free of warnings.
    set(defs "$<TARGET_PROPERTY:COMPILE_DEFINITIONS>")
    set(includes "$<REMOVE_DUPLICATES:$<TARGET_PROPERTY:INCLUDE_DIRECTORIES>>")
    set(own "$<FILTER:${includes},INCLUDE,^(${source_prefix}|${binary_prefix})>")
    set(other "$<FILTER:$<FILTER:${includes},EXCLUDE,^(${source_prefix}|${binary_prefix})>,EXCLUDE,^(${implicit})$>")
    set(args -std=c++${CMAKE_CXX_STANDARD} -fsyntax-only -fPIC ${SABLE_WARNING_FLAGS} -Werror)
    list(JOIN args "'\n'" args)
    string(CONCAT content "'${args}'\n"
                          "$<$<BOOL:${defs}>:'-D$<JOIN:${defs},'\n'-D>'\n>"
                          "$<$<BOOL:${own}>:'-I$<JOIN:${own},'\n'-I>'\n>"
                          "$<$<BOOL:${other}>:'-isystem'\n'$<JOIN:${other},'\n'-isystem'\n'>'\n>")
    sable_write_syntax_lists(${SABLE_CLANG_SYNTAX_DIR} FOLDERS src/core tools CONTENT "${content}")
endfunction()

set(SABLE_CLANG_SYNTAX_CHECK ${PROJECT_SOURCE_DIR}/tests/windows/syntax-check.sh)
if(SABLE_CLANG_CXX)
    add_custom_target(clang-syntax COMMAND ${SABLE_CLANG_SYNTAX_CHECK} ${SABLE_CLANG_SYNTAX_DIR} ${SABLE_CLANG_CXX}
                                           "with clang" USES_TERMINAL VERBATIM)
endif()
cmake_language(DEFER DIRECTORY ${PROJECT_SOURCE_DIR} CALL sable_write_clang_syntax_lists)
