// See math.h.
#pragma once

using time_t = long;
