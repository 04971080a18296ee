#pragma once

#include "Json.h"
#include "ToldCalibration.h"

Json ToJson(const ToldCalibration& told);
