# Writes a file as a source that holds its text:
#   cmake -D FILE=PAGE -D SOURCE=FILE.cc -P page_template.cmake
# Without FILE the text is empty.
cmake_minimum_required(VERSION 3.25)

set(text "")
if(FILE)
  file(READ "${FILE}" text)
endif()
file(WRITE "${SOURCE}" "#include \"report_page/page_template.h\"

namespace host {

std::string_view PageTemplate() {
  return R\"report_page(${text})report_page\";
}

}  // namespace host
")
