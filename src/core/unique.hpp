// The owners live beside the platform stand-in's code, which uses them too.
#pragma once

#include "../../common/unique.hpp"
