#include "report_schema.h"

#include <gtest/gtest.h>
#include <rapidjson/document.h>
#include <rapidjson/schema.h>
#include <rapidjson/stringbuffer.h>

#include "support/file_bytes.h"

namespace {

rapidjson::SchemaDocument LoadSchema(const char* path) {
  rapidjson::Document schema;
  schema.Parse(ReadFile(path).c_str());
  EXPECT_FALSE(schema.HasParseError()) << path;
  return rapidjson::SchemaDocument(schema);
}

std::string Text(const rapidjson::Pointer& pointer) {
  rapidjson::StringBuffer buffer;
  pointer.StringifyUriFragment(buffer);
  return buffer.GetString();
}

nlohmann::json Parse(const std::string& text, const rapidjson::SchemaDocument& schema) {
  rapidjson::Document report;
  report.Parse(text.c_str());
  EXPECT_FALSE(report.HasParseError()) << text;
  rapidjson::SchemaValidator validator(schema);
  EXPECT_TRUE(report.Accept(validator))
      << Text(validator.GetInvalidDocumentPointer()) << " is not as "
      << Text(validator.GetInvalidSchemaPointer()) << " says ("
      << validator.GetInvalidSchemaKeyword() << ") in\n"
      << text;
  return nlohmann::json::parse(text, nullptr, false);
}

}  // namespace

nlohmann::json ParseReport(const std::string& text) {
  static const rapidjson::SchemaDocument schema = LoadSchema(REPORT_SCHEMA);
  return Parse(text, schema);
}

nlohmann::json ParseResults(const std::string& text) {
  static const rapidjson::SchemaDocument schema = LoadSchema(RESULTS_SCHEMA);
  return Parse(text, schema);
}

nlohmann::json ParseMeasured(const std::string& text) {
  static const rapidjson::SchemaDocument schema = LoadSchema(MEASURE_SCHEMA);
  return Parse(text, schema);
}

nlohmann::json ParseSelftest(const std::string& text) {
  static const rapidjson::SchemaDocument schema = LoadSchema(SELFTEST_SCHEMA);
  return Parse(text, schema);
}

nlohmann::json ParseComparison(const std::string& text) {
  static const rapidjson::SchemaDocument schema = LoadSchema(COMPARE_SCHEMA);
  return Parse(text, schema);
}

nlohmann::json ParseControls(const std::string& text) {
  static const rapidjson::SchemaDocument schema = LoadSchema(CONTROLS_SCHEMA);
  return Parse(text, schema);
}
