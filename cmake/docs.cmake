# The API reference: cmake --build build --target docs. It is made of the headers, the Python layer's modules, the examples
# and the pages of docs/reference/.
find_package(Doxygen QUIET)
if(NOT DOXYGEN_FOUND)
    add_custom_target(docs COMMAND echo "Doxygen is missing: script/bootstrap docs installs it" COMMAND false)
    return()
endif()
set(reference ${PROJECT_SOURCE_DIR}/docs/reference)
set(pages ${CMAKE_CURRENT_BINARY_DIR}/reference)
set(DOXYGEN_PROJECT_NAME "Kelvaris client library")
set(DOXYGEN_PROJECT_NUMBER ${PROJECT_VERSION})
set(DOXYGEN_PROJECT_BRIEF "Reference for C, C++ and Python")
set(DOXYGEN_OPTIMIZE_OUTPUT_FOR_C YES)
set(DOXYGEN_GENERATE_HTML YES)
set(DOXYGEN_HTML_EXTRA_STYLESHEET ${reference}/reference.css)
set(DOXYGEN_LAYOUT_FILE ${reference}/layout.xml)
set(DOXYGEN_EXTRACT_ALL YES)
set(DOXYGEN_JAVADOC_AUTOBRIEF YES)
set(DOXYGEN_WARN_AS_ERROR FAIL_ON_WARNINGS)
set(DOXYGEN_SORT_MEMBER_DOCS NO)
set(DOXYGEN_SUBGROUPING NO)
set(DOXYGEN_ENUM_VALUES_PER_LINE 0)
set(DOXYGEN_TYPEDEF_HIDES_STRUCT YES)
set(DOXYGEN_QUIET YES)
set(DOXYGEN_MACRO_EXPANSION YES)
set(DOXYGEN_EXPAND_ONLY_PREDEF YES)
set(DOXYGEN_PREDEFINED "KELVARISSDK_API=" "KELVARISSDK_TAG(name)=name" "KELVARISSDK_UINT32=" "KELVARISSDK_ENUM(name)="
    "__cpp_impl_coroutine")
set(DOXYGEN_FILTER_PATTERNS "*.h=awk -f ${CMAKE_CURRENT_LIST_DIR}/docsfilter.awk"
    "*.hpp=awk -f ${CMAKE_CURRENT_LIST_DIR}/docsfilter.awk")
set(DOXYGEN_STRIP_FROM_PATH ${PROJECT_SOURCE_DIR}/sdklibrary/include ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR})
set(DOXYGEN_EXAMPLE_PATH ${PROJECT_SOURCE_DIR}/examples ${reference} ${pages})
set(DOXYGEN_EXAMPLE_RECURSIVE YES)
set(DOXYGEN_EXTENSION_MAPPING mjs=JavaScript)
# One includes two headers, which bring in all others; those aren't shown.
set(DOXYGEN_SHOW_FILES NO)
set(DOXYGEN_SHOW_USED_FILES NO)
set(DOXYGEN_SHOW_INCLUDE_FILES NO)
set(DOXYGEN_SHOW_HEADERFILE NO)
set(DOXYGEN_VERBATIM_HEADERS NO)
set(DOXYGEN_CLASS_GRAPH NO)
set(DOXYGEN_HAVE_DOT NO)

set(headers ${PROJECT_SOURCE_DIR}/sdklibrary/include/kelvarissdk)
file(GLOB documented CONFIGURE_DEPENDS ${headers}/*.h ${headers}/*.hpp ${headers}/cpp/*.hpp)
# The insides of the C++ layer.
list(FILTER documented EXCLUDE REGEX "/cpp/(core|deliver|life|link|operation)\\.hpp$")
add_custom_target(reference_pages
    COMMAND ${CMAKE_COMMAND} -E make_directory ${pages}
    COMMAND ${PYTHON3} ${reference}/pages.py ${PROJECT_BINARY_DIR}/kelvarissdk-abi.json ${pages}
    COMMAND ${PYTHON3} ${PROJECT_SOURCE_DIR}/python/reference.py ${pages})
add_dependencies(reference_pages abi_description)
doxygen_add_docs(docs ${documented} ${reference}/front.md ${reference}/groups.dox ${pages}
    COMMENT "API reference in html/")
add_dependencies(docs reference_pages)
