# The Python layer: cmake --build build --target wheel makes its wheel in wheel/. It needs no network.
find_program(PYTHON3 python3 HINTS /usr/bin)
set(pyproject ${PROJECT_SOURCE_DIR}/python/pyproject.toml)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${pyproject})
file(STRINGS ${pyproject} version_line REGEX "^version = \"${PROJECT_VERSION}\"$")
if(NOT version_line)
    message(FATAL_ERROR "${pyproject} doesn't have the project's version, ${PROJECT_VERSION}.")
endif()

# setuptools writes beside the sources, so that it gets a copy of them.
file(GLOB python_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/python/kelvarissdk/*)
list(FILTER python_sources EXCLUDE REGEX "/__pycache__$")
set(python_copy ${CMAKE_CURRENT_BINARY_DIR}/python)
set(wheel ${CMAKE_CURRENT_BINARY_DIR}/wheel/kelvarissdk-${PROJECT_VERSION}-py3-none-any.whl)
add_custom_command(OUTPUT ${wheel}
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${python_copy} ${wheel}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${python_copy}/kelvarissdk
    COMMAND ${CMAKE_COMMAND} -E copy ${python_sources} ${python_copy}/kelvarissdk
    COMMAND ${CMAKE_COMMAND} -E copy ${pyproject} ${python_copy}
    COMMAND ${CMAKE_COMMAND} -E chdir ${python_copy} ${PYTHON3} -c
        "__import__('setuptools.build_meta').build_meta.build_wheel('${CMAKE_CURRENT_BINARY_DIR}/wheel')"
    DEPENDS ${python_sources} ${pyproject}
    VERBATIM)
add_custom_target(wheel DEPENDS ${wheel})
