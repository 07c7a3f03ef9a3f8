#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/catalogue.h"

namespace host {

// The catalogue in words.

inline constexpr Group kGroups[] = {Group::kHarness, Group::kAec,     Group::kEnhancement,
                                    Group::kCodec,   Group::kEffects, Group::kMixing};

std::string_view GroupName(Group group);
std::string_view ContainerName(Container container);
std::string_view SampleTypeName(SampleType samples);
std::string_view DeviceName(Device device);

// "void TestHRTF()"
std::string Declaration(const CatalogueRow& row);

// "available", "not built yet", "helper", or the routines that call it: "called by TestTemp".
std::string Availability(const CatalogueRow& row);

// "as fast as its input is processed", or how long a run takes.
std::string Duration(const CatalogueRow& row);

// "16-bit samples, 44100 Hz, stereo"
std::string FileFormat(const FileUse& use);

// Where a declared file is, relative to the workspace; nothing when an argument decides.
std::optional<std::string> KnownPlace(const FileUse& use);

// The row of a routine; throws UsageError, naming those that are spelled alike, when there is none.
const CatalogueRow& FindRow(std::string_view routine);

}  // namespace host
