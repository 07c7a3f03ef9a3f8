// The shapes and values that the bench and an engine agree on.

#include <gmock/gmock.h>

#include <type_traits>

#include "engine_api/effects/fir_filter.h"
#include "engine_api/effects/mit_hrtf.h"

using zuwebrtc::FIRFilter;

static_assert(std::is_same_v<decltype(mit_hrtf_availability),
                             unsigned int(int, int, unsigned int, unsigned int)>);

static_assert(std::is_same_v<decltype(mit_hrtf_get),
                             unsigned int(int*, int*, unsigned int, unsigned int, short*, short*)>);

static_assert(std::has_virtual_destructor_v<FIRFilter> && std::is_abstract_v<FIRFilter>);

static_assert(std::is_same_v<decltype(&FIRFilter::Filter),
                             void (FIRFilter::*)(const float*, size_t, float*)>);

static_assert(std::is_same_v<decltype(&FIRFilter::UpdateCoeffients),
                             void (FIRFilter::*)(const float*, size_t)>);

static_assert(
    std::is_same_v<decltype(FIRFilter::Create), FIRFilter*(const float*, size_t, size_t)>);
