#include "suite/journal_form.h"

#include <algorithm>
#include <span>

#include "suite/case_record.h"

namespace host {

namespace {

enum class Shape { kName, kText, kTextIfThere, kTextOrNull, kNumberOrNull, kCodeOrNull };

struct Member {
  const char* key;
  Shape shape;
};
constexpr Member kMembers[] = {{"id", Shape::kName},
                               {"routine", Shape::kName},
                               {"verdict", Shape::kName},
                               {"group", Shape::kText},
                               {"cause", Shape::kText},
                               {"reason", Shape::kText},
                               {"report", Shape::kText},
                               {"known", Shape::kTextOrNull},
                               {"cluster", Shape::kTextOrNull},
                               {"exit_code", Shape::kCodeOrNull},
                               {"elapsed", Shape::kNumberOrNull},
                               {"cpu", Shape::kNumberOrNull},
                               {"rtf", Shape::kNumberOrNull},
                               {"rtf_cpu", Shape::kNumberOrNull},
                               {kFingerprintKey, Shape::kTextIfThere},
                               {kLogTailKey, Shape::kTextIfThere}};
constexpr const char* kListsOfTexts[] = {"arguments", "tags"};
constexpr const char* kListsOfObjects[] = {"results", "guards", "figures", "outputs"};

bool Fits(const Json& value, Shape shape) {
  switch (shape) {
    case Shape::kTextOrNull:
      return value.is_string() || value.is_null();
    case Shape::kNumberOrNull:
      return value.is_number() || value.is_null();
    case Shape::kCodeOrNull:
      return value.is_number_integer() || value.is_null();
    default:
      return value.is_string();
  }
}

// The list of this key, empty where there is none; null where something else stands there.
const Json* ListOf(Json& line, const char* key) {
  const Json& list = line.emplace(key, Json::array()).first.value();
  return list.is_array() ? &list : nullptr;
}

bool IsTextIfThere(const Json& object, const char* key) {
  return !object.contains(key) || object[key].is_string();
}

bool IsShard(const Json& shard) {
  if (!shard.is_object()) return false;
  const Json index = shard.value("index", Json());
  const Json of = shard.value("of", Json());
  return index.is_number_unsigned() && of.is_number_unsigned() && index >= 1 && index <= of;
}

}  // namespace

bool IsPlanHeader(const Json& line) {
  if (!line.is_object() || !IsTextIfThere(line, "started") || !IsTextIfThere(line, "selection")) {
    return false;
  }
  if (line.contains("chosen") && !line["chosen"].is_number_unsigned()) return false;
  const Json shard = line.value("shard", Json());
  return shard.is_null() || IsShard(shard);
}

bool HasPlace(const Json& line) {
  return line.is_object() && line.contains("index") && line["index"].is_number_unsigned();
}

bool TakeRecord(Json& line) {
  if (!HasPlace(line)) return false;
  for (const auto& [key, shape] : kMembers) {
    if (line.contains(key)) {
      if (!Fits(line[key], shape)) return false;
    } else if (shape == Shape::kName) {
      return false;
    } else if (shape != Shape::kTextIfThere) {
      line[key] = shape == Shape::kText ? Json("") : Json();
    }
  }
  return true;
}

bool TakeWholeRecord(Json& line) {
  if (!TakeRecord(line)) return false;
  for (const char* const key : kListsOfTexts) {
    const Json* const list = ListOf(line, key);
    const auto isText = [](const Json& each) { return each.is_string(); };
    if (list == nullptr || !std::all_of(list->begin(), list->end(), isText)) return false;
  }
  for (const char* const key : kListsOfObjects) {
    const Json* const list = ListOf(line, key);
    const auto isEntry = [](const Json& each) {
      return each.is_object() && IsTextIfThere(each, "path");
    };
    if (list == nullptr || !std::all_of(list->begin(), list->end(), isEntry)) return false;
  }
  return true;
}

}  // namespace host
