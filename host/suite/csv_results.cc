#include <initializer_list>

#include "report/csv_field.h"
#include "suite/result_writer.h"

namespace host {

namespace {

std::string Word(const Json& value) {
  if (value.is_null()) return "";
  return value.is_string() ? value.get<std::string>() : value.dump();
}

// What a value is called: that of a channel has its number, counted from 0, after the name.
std::string NameOf(const Json& value) {
  const Json channel = value.value("channel", Json());
  return Word(value.value("name", Json())) + (channel.is_null() ? "" : "." + Word(channel));
}

}  // namespace

CsvResults::CsvResults(FILE* file) : m_file(file) {
  fputs("case,routine,verdict,file,kind,name,value,unit\n", m_file);
}

void CsvResults::Add(const Json& record) {
  const std::string start = CsvField(Word(record["id"])) + "," + CsvField(Word(record["routine"])) +
                            "," + CsvField(Word(record["verdict"]));
  bool empty = true;
  const auto row = [&](std::initializer_list<std::string> fields) {
    std::string line = start;
    for (const std::string& field : fields) line += "," + CsvField(field);
    fprintf(m_file, "%s\n", line.c_str());
    empty = false;
  };
  for (const auto& [list, kind] : {std::pair{"figures", "figure"}, {"results", "result"}}) {
    for (const Json& value : record[list]) {
      row({Word(value.value("file", Json())), kind, NameOf(value),
           Word(value.value("value", Json())), Word(value.value("unit", Json()))});
    }
  }
  // The value of a guard is the time of the first place.
  for (const Json& guard : record["guards"]) {
    const Json at = guard.value("at", Json());
    row({Word(guard.value("file", Json())), "guard", NameOf(guard), Word(at),
         at.is_null() ? "" : "s"});
  }
  if (empty) row({"", "", "", "", ""});
}

}  // namespace host
