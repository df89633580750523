// See math.h.
#pragma once

struct mbstate_t;
