# The target host_headers has the header-only libraries CLI11, nlohmann-json, RapidXML and, for the tests, valijson.
include_guard(GLOBAL)

add_library(host_headers INTERFACE)

if(CMAKE_HOST_WIN32)
  find_package(CLI11 REQUIRED)
  find_package(nlohmann_json REQUIRED)
  find_path(RAPIDXML_INCLUDE_DIR rapidxml/rapidxml.hpp REQUIRED)
  target_link_libraries(host_headers INTERFACE CLI11::CLI11 nlohmann_json::nlohmann_json)
  target_include_directories(host_headers SYSTEM INTERFACE "${RAPIDXML_INCLUDE_DIR}")
  if(BUILD_TESTING)
    find_package(valijson REQUIRED)
    target_link_libraries(host_headers INTERFACE ValiJSON::valijson)
  endif()
  return()
endif()

# Symbolic links to the folders of these libraries. Their common folder also has the C headers of the system that
# builds, which a cross-compiler must not see.
set(host_header_links "${CMAKE_BINARY_DIR}/host-headers")
file(MAKE_DIRECTORY "${host_header_links}")

function(link_host_headers folder header package)
  find_path(${folder}_HEADERS "${folder}/${header}" PATHS /usr/include /usr/local/include NO_DEFAULT_PATH
                                                                                        NO_CMAKE_FIND_ROOT_PATH)
  if(NOT ${folder}_HEADERS)
    message(FATAL_ERROR "${folder}/${header} not found: install the Debian package ${package}")
  endif()
  file(CREATE_LINK "${${folder}_HEADERS}/${folder}" "${host_header_links}/${folder}" SYMBOLIC)
endfunction()

link_host_headers(CLI CLI.hpp libcli11-dev)
link_host_headers(nlohmann json.hpp nlohmann-json3-dev)
link_host_headers(rapidxml rapidxml.hpp librapidxml-dev)
if(BUILD_TESTING)
  link_host_headers(valijson validator.hpp libvalijson-dev)
endif()
target_include_directories(host_headers SYSTEM INTERFACE "${host_header_links}")
