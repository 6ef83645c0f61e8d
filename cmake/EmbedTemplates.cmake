# Writes a C++ source that holds files byte for byte, each as a std::string_view named after the file.
#
# cmake -DOUTPUT=file.cpp -DHEADER=header.h -DNAMESPACE=NAME "-DFILES=a.xml;b.xml" -P EmbedTemplates.cmake
# The header declares the names, in that namespace.
set(text "// Generated from the templates.\n#include \"${HEADER}\"\n\nnamespace ${NAMESPACE}\n{\n\n")
foreach(file IN LISTS FILES)
  get_filename_component(name "${file}" NAME_WE)
  file(READ "${file}" bytes HEX)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "\\\\x\\1" bytes "${bytes}")
  file(SIZE "${file}" size)
  string(APPEND text "const std::string_view ${name}(\"${bytes}\", ${size});\n")
endforeach()
string(APPEND text "\n} // namespace ${NAMESPACE}\n")
file(WRITE "${OUTPUT}" "${text}")
