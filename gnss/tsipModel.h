// The models that the reports of a TSIP receiver reveal, as gnss::Model has them.
#pragma once

#include <cstdint>

constexpr uint8_t ModelAcutime = 3;
constexpr uint8_t ModelLassen = 4;
constexpr uint8_t ModelResolution = 5;
