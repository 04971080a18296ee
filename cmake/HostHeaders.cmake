# The target host_headers has the header-only libraries CLI11, nlohmann-json, RapidXML and, for the tests, valijson.
include_guard(GLOBAL)

add_library(host_headers INTERFACE)
set(host_header_links "${CMAKE_BINARY_DIR}/host-headers")

function(add_host_header header debian_package)
  get_filename_component(folder "${header}" DIRECTORY)
  if(CMAKE_HOST_WIN32)
    # From vcpkg, which reads vcpkg.json.
    find_path(${folder}_HEADERS "${header}" REQUIRED)
    target_include_directories(host_headers SYSTEM INTERFACE "${${folder}_HEADERS}")
    return()
  endif()
  # Through a symbolic link to the library's folder. The common folder also has the C headers of the system that builds,
  # which a cross-compiler must not see.
  find_path(${folder}_HEADERS "${header}" PATHS /usr/include /usr/local/include NO_DEFAULT_PATH
                                                                               NO_CMAKE_FIND_ROOT_PATH)
  if(NOT ${folder}_HEADERS)
    message(FATAL_ERROR "${header} not found: install the Debian package ${debian_package}")
  endif()
  file(MAKE_DIRECTORY "${host_header_links}")
  file(CREATE_LINK "${${folder}_HEADERS}/${folder}" "${host_header_links}/${folder}" SYMBOLIC)
  target_include_directories(host_headers SYSTEM INTERFACE "${host_header_links}")
endfunction()

add_host_header(CLI/CLI.hpp libcli11-dev)
add_host_header(nlohmann/json.hpp nlohmann-json3-dev)
add_host_header(rapidxml/rapidxml.hpp librapidxml-dev)
if(BUILD_TESTING)
  add_host_header(valijson/validator.hpp libvalijson-dev)
endif()
