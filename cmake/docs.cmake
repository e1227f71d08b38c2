# The API reference from the headers: cmake --build build --target docs.
find_package(Doxygen QUIET)
if(NOT DOXYGEN_FOUND)
    add_custom_target(docs COMMAND echo "Doxygen is missing: script/bootstrap docs installs it" COMMAND false)
    return()
endif()
set(DOXYGEN_PROJECT_NAME "Kelvaris client library")
set(DOXYGEN_OPTIMIZE_OUTPUT_FOR_C YES)
set(DOXYGEN_GENERATE_HTML YES)
set(DOXYGEN_EXTRACT_ALL YES)
set(DOXYGEN_JAVADOC_AUTOBRIEF YES)
set(DOXYGEN_WARN_AS_ERROR FAIL_ON_WARNINGS)
set(DOXYGEN_SORT_MEMBER_DOCS NO)
set(DOXYGEN_QUIET YES)
set(DOXYGEN_MACRO_EXPANSION YES)
set(DOXYGEN_EXPAND_ONLY_PREDEF YES)
set(DOXYGEN_PREDEFINED "KELVARISSDK_API=" "KELVARISSDK_TAG(name)=name" "KELVARISSDK_UINT32=" "KELVARISSDK_ENUM(name)=")
set(DOXYGEN_INPUT_FILTER "sed -E -f ${CMAKE_CURRENT_LIST_DIR}/docsfilter.sed")
set(DOXYGEN_STRIP_FROM_PATH ${PROJECT_SOURCE_DIR}/sdklibrary/include)

# The Python layer's page, out of its modules.
set(python_page ${CMAKE_CURRENT_BINARY_DIR}/python.md)
add_custom_command(OUTPUT ${python_page}
    COMMAND ${PYTHON3} ${PROJECT_SOURCE_DIR}/python/reference.py >${python_page}
    DEPENDS ${python_sources} ${PROJECT_SOURCE_DIR}/python/reference.py)
add_custom_target(python_page DEPENDS ${python_page})
doxygen_add_docs(docs ${PROJECT_SOURCE_DIR}/sdklibrary/include ${python_page} COMMENT "API reference in html/")
add_dependencies(docs python_page)
