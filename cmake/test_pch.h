// What nearly every test includes; compiled once for each test program.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "quillon/platform/json/QNJson.h"
