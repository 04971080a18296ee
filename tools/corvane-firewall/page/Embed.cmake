# Puts the styles and the scripts into report.html and writes the result as a C++ array of bytes:
#   cmake -DFOLDER=... -DHEADER=... -P Embed.cmake
foreach(name report.html report.css results.css media.css policy.js dom.js matrix.js report.js)
  file(READ "${FOLDER}/${name}" hex HEX)
  set(${name} "${hex}")
endforeach()

function(replace_line mark replacement)
  string(HEX "${mark}\n" hex_mark)
  string(REPLACE "${hex_mark}" "${replacement}" page "${report.html}")
  set(report.html "${page}" PARENT_SCOPE)
endfunction()
replace_line("@STYLE@" "${report.css}${results.css}${media.css}")
replace_line("@SCRIPT@" "${policy.js}${dom.js}${matrix.js}${report.js}")

string(REGEX REPLACE "(..)" "0x\\1," bytes "${report.html}")
string(REGEX REPLACE "((0x..,)(0x..,)(0x..,)(0x..,)(0x..,)(0x..,)(0x..,)(0x..,))" "\\1\n" bytes "${bytes}")
file(WRITE "${HEADER}" "inline constexpr unsigned char kReportTemplate[]{\n${bytes}};\n")
